#ifndef XOLATREEMODELGLOBAL_H
#define XOLATREEMODELGLOBAL_H

/*!
 * \file XOLATreeModelGlobal.h
 * The export macro and the three function types a host hands to a model:
 * a less-than for the one-role sorts, a copy function for merging duplicates
 * and a match function for filter views of the host's own making.
 *
 * Included by every other public header; a host rarely includes it itself.
 */

#include <QtCore/qglobal.h>
#include <QtCore/QVariant>

#include <functional>

/*!
 * \def XOLATREEMODEL_EXPORT
 * Marks the classes and functions the shared library exports. In a host it
 * imports them; it exports them while the library itself is built
 * (XOLATREEMODEL_BUILDING) and is empty in a static build of the library's
 * objects (XOLATREEMODEL_STATIC). Hosts define neither.
 */
#if defined(XOLATREEMODEL_STATIC)
#  define XOLATREEMODEL_EXPORT
#elif defined(XOLATREEMODEL_BUILDING)
#  define XOLATREEMODEL_EXPORT Q_DECL_EXPORT
#else
#  define XOLATREEMODEL_EXPORT Q_DECL_IMPORT
#endif

class QObject;

//! A caller's less-than: true when the first value belongs before the second.
/*!
 * Given to IXOLATreeModel::SortByRole() or IXOLATreeModel::SortByRoleAndKeep(),
 * it replaces the built-in comparison. It receives the role values of two rows,
 * never the items. Rows without a value for the role (an invalid QVariant) are
 * placed last without asking it. In a descending sort its answer is negated,
 * so "less" still means "belongs before" in ascending terms.
 *
 * Rows are placed one by one in their current order, each compared with rows
 * already placed; a function that is not a strict weak order still gives a
 * fixed, repeatable order, but not necessarily a sorted one.
 *
 * \code
 * // Case-insensitive names, ascending
 * model->SortByRole("nameRole", true, [](const QVariant& a, const QVariant& b) {
 *     return QString::compare(a.toString(), b.toString(), Qt::CaseInsensitive) < 0;
 * });
 * \endcode
 */
typedef std::function<bool(const QVariant&, const QVariant&)> PF_LESS_THAN;

//! Copies the data of one item (source, first) into another (destination, second).
/*!
 * Given to CreateXOLATreeModel() or the XOLATreeModel constructor. When a model
 * made with option 4 (XOLATreeModel::MergeDuplicatesOption) is offered an item
 * whose id it already lists, it calls this function with the offered item as
 * source and the listed item as destination, then deletes the offered item.
 * Without a function the model copies every role of its role-name table
 * (XOLATreeModel::CopyItem()).
 *
 * Both arguments are XOLATreeItem objects (or the host's subclass):
 * \code
 * PF_COPY_ITEM copySize = [](const QObject* from, QObject* to) {
 *     auto* source = qobject_cast<const FileItem*>(from);
 *     auto* destination = qobject_cast<FileItem*>(to);
 *     if (source && destination)
 *         destination->setSize(source->size());
 * };
 * \endcode
 */
typedef std::function<void(const QObject*, QObject*)> PF_COPY_ITEM;

//! Decides whether an item passes a caller-defined filter, given the view's rule value.
/*!
 * Given to CreateXOLATreeModel() or the XOLATreeModel constructor, and used by
 * every view that IXOLATreeModel::GetFilterModelByUserDefinedRules() makes of
 * that model: an item (first argument, an XOLATreeItem) is listed by the view
 * when the function answers true for the view's rule value (second argument).
 * The function alone decides; it is not asked about the rows of child models.
 *
 * The rule value reaches the function as it was given: a value from C++
 * unchanged; from QML, a JavaScript object as a QVariantMap and an array as a
 * QVariantList (a function stays a QJSValue). A string, number or date from QML
 * arrives as the matching plain type.
 *
 * \code
 * // Files of at least N bytes; from QML: model.GetFilterModelByUserDefinedRules({min: 4096})
 * PF_MATCH_ITEM atLeast = [](const QObject* object, const QVariant& rule) {
 *     auto* item = qobject_cast<const XOLATreeItem*>(object);
 *     return item && item->getData(FileItem::SizeRole).toLongLong()
 *                        >= rule.toMap().value("min").toLongLong();
 * };
 * \endcode
 */
typedef std::function<bool(const QObject*, const QVariant&)> PF_MATCH_ITEM;

#endif // XOLATREEMODELGLOBAL_H
