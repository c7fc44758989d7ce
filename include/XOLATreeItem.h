#ifndef XOLATREEITEM_H
#define XOLATREEITEM_H

/*!
 * \file XOLATreeItem.h
 * XOLATreeItem, one row of a model.
 */

#include "XOLATreeModelGlobal.h"

#include <QtCore/QMap>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QVariant>

#include <memory>

class XOLATreeItemPrivate;

/*!
 * One row of an XOLATreeModel: an id, a name, an optional child model (which
 * turns the list into a tree) and a free map of values.
 *
 * The value map always mirrors the three fixed fields under "idRole",
 * "nameRole" and "childModelRole". Hosts that need more roles subclass the
 * item and override both getData() forms.
 *
 * Items have no QObject parent and CppOwnership, so a QML engine never
 * collects an item it has been handed; the model that lists an item owns it.
 *
 * \par Ownership
 * A model deletes the items it removes (with deleteLater(), and their child
 * models with them) unless it was made with option 2
 * (XOLATreeModel::KeepRemovedItemsOption); IXOLATreeModel::Remove(const QStringList&)
 * always hands its items back. The item never deletes its child model itself:
 * the model that removes the item does.
 *
 * \par Ids
 * A model indexes an item under the id it had when it was listed. Give an item
 * its final id before handing it to a model: after SetID() on a listed item,
 * lookups by the new id (IXOLATreeModel::FindItem(const QString&, bool) const,
 * IXOLATreeModel::RemoveOne()) do not find it, while the old id still does.
 *
 * \par Extra roles
 * Rows, sort keys and group keys are read by role number, filter rules and
 * IXOLATreeModel::get() by role name, so a subclass answers both:
 * \code
 * class FileItem : public XOLATreeItem
 * {
 *     Q_OBJECT
 * public:
 *     enum FileRoles { SizeRole = XOLATreeItem::LastRole + 1, SuffixRole };
 *     FileItem(const QString& path, qint64 size)
 *         : XOLATreeItem(path, QFileInfo(path).fileName()), m_size(size), m_suffix(QFileInfo(path).suffix()) {}
 *
 *     QVariant getData(int role) const override
 *     {
 *         switch (role) {
 *         case SizeRole: return m_size;
 *         case SuffixRole: return m_suffix;
 *         default: return XOLATreeItem::getData(role); // id, name, child model, value map
 *         }
 *     }
 *     QVariant getData(const QString& roleName) const override
 *     {
 *         if (roleName == QLatin1String("size")) return getData(int(SizeRole));
 *         if (roleName == QLatin1String("suffix")) return getData(int(SuffixRole));
 *         return XOLATreeItem::getData(roleName); // the three fixed names
 *     }
 *
 * private:
 *     qint64 m_size;
 *     QString m_suffix;
 * };
 * \endcode
 * The model is then made with a role-name table naming the new roles and the
 * three fixed ones (see CreateXOLATreeModel()). A subclass whose values change
 * emits valueChanged() so that the rows showing it are refreshed.
 */
class XOLATREEMODEL_EXPORT XOLATreeItem : public QObject
{
    Q_OBJECT

public:
    //! The role numbers every item answers; hosts number their own after #LastRole.
    enum Roles {
        IdRole = Qt::UserRole + 1, //!< 257: the id (QString); default role name "idRole"
        NameRole,                  //!< 258: the name (QString); default role name "nameRole"
        ChildModelRole,            //!< 259: the child model (a QObject* variant, valid also when null); default role name "childModelRole"
        JsonValueRole,             //!< 260: the whole value map (QVariantMap); no default role name
        LastRole = JsonValueRole   //!< hosts number their own roles after this one
    };
    Q_ENUM(Roles)

    //! The third argument is the child model, not a QObject parent.
    /*!
     * \param id the item's id, unique within a model (see the class notes on ids)
     * \param name the text shown for the item
     * \param childModel a model of the item's children (usually an XOLATreeModel),
     *        or null for a leaf. The item does not own it; the model that removes
     *        the item disposes of it. Changes of a child model that is a
     *        QAbstractItemModel are relayed as childModelValueChanged().
     */
    XOLATreeItem(const QString& id, const QString& name, QObject* childModel = nullptr);
    //! Deletes the item's state; models that list it without owning it drop its rows first.
    /*!
     * Models made with option 2 (XOLATreeModel::KeepRemovedItemsOption) and the
     * views list items they do not own; they take the item's rows out before it
     * goes, with the notices of a removal by id. A model without option 2 owns
     * its items: remove an item through the model rather than deleting it.
     */
    ~XOLATreeItem() override;

    /*!
     * The value of a role: #IdRole, #NameRole, #ChildModelRole (a QObject*
     * variant, also when there is no child model) or #JsonValueRole (the whole
     * value map); an invalid QVariant for any other role. Subclasses add their
     * roles and fall back on this one.
     * \param role a role number
     */
    Q_INVOKABLE virtual QVariant getData(int role) const;
    /*!
     * The value of a role given by name. The base item knows only "idRole",
     * "nameRole" and "childModelRole" and answers an invalid QVariant for any
     * other name, also for keys of its value map. Filter rules,
     * IXOLATreeModel::get() and the by-name lookups read values this way, so a
     * subclass with extra roles overrides this form too.
     * \param roleName a role name as in the model's role-name table
     */
    Q_INVOKABLE virtual QVariant getData(const QString& roleName) const;
    /*!
     * Sets the value of #IdRole (SetID()), #NameRole (SetName()),
     * #ChildModelRole (SetChildModel()) or #JsonValueRole (SetJsonValue());
     * other roles are ignored. The value is converted as needed (text for the
     * id and name, a map for the value map).
     * \param role a role number
     * \param value the new value
     */
    Q_INVOKABLE virtual void setData(int role, QVariant value);
    /*!
     * Sets a value by role name: "idRole", "nameRole" or "childModelRole";
     * other names are ignored.
     * \param roleName a role name
     * \param value the new value
     */
    Q_INVOKABLE virtual void setData(const QString& roleName, QVariant value);

    //! Sets the id and emits valueChanged() when it differs. See the class notes on ids.
    void SetID(const QString& id);
    //! Sets the name and emits valueChanged() when it differs.
    void SetName(const QString& name);
    /*!
     * Sets the child model and emits valueChanged() when it differs; null
     * removes it. The item relays the new model's dataChanged, rowsInserted
     * and rowsRemoved as childModelValueChanged().
     *
     * Connections to earlier child models are kept: an item given several
     * child models in turn relays all of them, and setting the same model
     * twice relays its changes twice. Existing hosts rely on both.
     * \param childModel the new child model, or null
     */
    void SetChildModel(QObject* childModel);
    /*!
     * Replaces the value map. The id, the name and the child model are then
     * read from its "idRole", "nameRole" and "childModelRole" entries; a map
     * without one of them clears that field. valueChanged() is emitted once for
     * each field that changed and once more for the map; a map equal to the
     * current one changes nothing and emits nothing.
     * \param value the new value map
     */
    void SetJsonValue(const QMap<QString, QVariant>& value);

    //! The id.
    QString id() const;
    //! The name.
    QString name() const;
    //! The child model, or null; null also once its owner has deleted it.
    QObject* childModel() const;
    //! The value map; its "childModelRole" entry never names a deleted model.
    QMap<QString, QVariant> jsonValue() const;

signals:
    //! The id, the name, the child model or the value map changed.
    /*!
     * A model listing the item answers with dataChanged() for the item's row.
     * Subclasses emit it when their own values change.
     */
    void valueChanged();
    //! The child model's rows or data changed (relayed from the child model).
    /*!
     * Filter views re-check the item, which passes while any of its
     * descendants passes.
     */
    void childModelValueChanged();

private:
    Q_DISABLE_COPY(XOLATreeItem)
    // Everything the item holds lives behind this pointer, so that the layout
    // hosts compile against stays the same when the item's state changes.
    const std::unique_ptr<XOLATreeItemPrivate> d_ptr;
};

#endif // XOLATREEITEM_H
