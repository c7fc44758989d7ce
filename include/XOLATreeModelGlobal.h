#ifndef XOLATREEMODELGLOBAL_H
#define XOLATREEMODELGLOBAL_H

#include <QtCore/qglobal.h>
#include <QtCore/QVariant>

#include <functional>

#if defined(XOLATREEMODEL_STATIC)
#  define XOLATREEMODEL_EXPORT
#elif defined(XOLATREEMODEL_BUILDING)
#  define XOLATREEMODEL_EXPORT Q_DECL_EXPORT
#else
#  define XOLATREEMODEL_EXPORT Q_DECL_IMPORT
#endif

class QObject;

//! A caller's less-than: true when the first value belongs before the second.
typedef std::function<bool(const QVariant&, const QVariant&)> PF_LESS_THAN;

//! Copies the data of one item (source, first) into another (destination, second).
typedef std::function<void(const QObject*, QObject*)> PF_COPY_ITEM;

//! Decides whether an item passes a caller-defined filter, given the view's rule value.
typedef std::function<bool(const QObject*, const QVariant&)> PF_MATCH_ITEM;

#endif // XOLATREEMODELGLOBAL_H
