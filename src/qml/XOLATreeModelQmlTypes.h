#ifndef XOLATREEMODELQMLTYPES_H
#define XOLATREEMODELQMLTYPES_H

#include <XOLATreeModel.h>

#include <QtQml/qqml.h>

/*!
 * Names the library's model for QML. Documents create it as IXOLATreeModel,
 * the name of the interface whose enums and invokables they use, although the
 * class behind it is XOLATreeModel. The class is described from here, outside
 * the public headers, so that hosts compiling against those headers never see
 * QML registration macros.
 */
struct XOLATreeModelQmlType
{
    Q_GADGET
    QML_FOREIGN(XOLATreeModel)
    QML_NAMED_ELEMENT(IXOLATreeModel)
};

#endif // XOLATREEMODELQMLTYPES_H
