#ifndef XOLATREEMODELPLUGIN_H
#define XOLATREEMODELPLUGIN_H

#include <QtCore/QtGlobal>
#include <QtQml/QQmlExtensionPlugin>

/*!
 * The plugin of the QML module com.xolasys.ixolatreemodel: documents that
 * import the module can create IXOLATreeModel and use its enums without any
 * host code. The registration itself is generated from XOLATreeModelQmlTypes.h.
 */
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
class XOLATreeModelPlugin : public QQmlEngineExtensionPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QQmlEngineExtensionInterface_iid)

public:
    explicit XOLATreeModelPlugin(QObject* parent = nullptr);
};
#else
class XOLATreeModelPlugin : public QQmlExtensionPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QQmlExtensionInterface_iid)

public:
    explicit XOLATreeModelPlugin(QObject* parent = nullptr);

    void registerTypes(const char* uri) override;
};
#endif

#endif // XOLATREEMODELPLUGIN_H
