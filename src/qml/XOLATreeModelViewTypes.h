#ifndef XOLATREEMODELVIEWTYPES_H
#define XOLATREEMODELVIEWTYPES_H

// Read by the type information generator only; never compiled into the
// plugin. The views are internal classes of the library that QML receives as
// QObject* from GetFilterModel(), GetGroupModel(), GetPagingModel() and
// GetPartialModel(), and items come back from FindItem(). Describing them
// lets tooling show their properties and invokables. They carry no QML name:
// documents cannot create them, and the plugin registers nothing that would
// need their symbols.

#include "FilterModelImp.h"
#include "GroupModelImp.h"
#include "PagingModelImp.h"
#include "PartialModel.h"

#include <XOLATreeItem.h>

#include <QtQml/qqml.h>

struct FilterModelQmlType
{
    Q_GADGET
    QML_FOREIGN(FilterModelImp)
    QML_ANONYMOUS
};

struct GroupModelQmlType
{
    Q_GADGET
    QML_FOREIGN(GroupModelImp)
    QML_ANONYMOUS
};

struct PagingModelQmlType
{
    Q_GADGET
    QML_FOREIGN(PagingModelImp)
    QML_ANONYMOUS
};

struct PartialModelQmlType
{
    Q_GADGET
    QML_FOREIGN(PartialModel)
    QML_ANONYMOUS
};

struct XOLATreeItemQmlType
{
    Q_GADGET
    QML_FOREIGN(XOLATreeItem)
    QML_ANONYMOUS
};

#endif // XOLATREEMODELVIEWTYPES_H
