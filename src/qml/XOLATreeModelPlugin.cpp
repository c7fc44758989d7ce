#include "XOLATreeModelPlugin.h"

#include <XOLATreeModel.h>

#include <QtQml/qqml.h>

// Generated at build time from XOLATreeModelQmlTypes.h: registers the model as
// IXOLATreeModel. Qt runs it itself, through the QQmlModuleRegistration that
// comes with it, while it registers the plugin's types.
void qml_register_types_com_xolasys_ixolatreemodel();

namespace {

constexpr const char* moduleUri = "com.xolasys.ixolatreemodel";
constexpr const char* elementName = "IXOLATreeModel";

// Takes back the registration the model made of itself, if there is one.
void retireModelRegistration()
{
    const int typeId = qmlTypeId(moduleUri, 1, 0, elementName);
    if (typeId >= 0)
        QQmlPrivate::qmlunregister(QQmlPrivate::TypeRegistration, quintptr(typeId));
}

// The model registers itself as IXOLATreeModel under this module's URI the
// first time each of its constructors runs, so that hosts which construct a
// model before loading QML need no module at all. Qt, for its part, refuses to
// load the plugin of a module whose URI already holds types ("namespace has
// already been used"), and once the plugin has loaded it refuses, with a
// warning, every later registration into the module. Both ways would break
// hosts that mix the two.
//
// The plugin object is made before Qt looks at the URI, so here every one-time
// registration of the model is made and taken back again, one at a time (a
// second registration of the same name would hide the first from lookup).
// Afterwards the URI is empty for Qt's check, the plugin's own registration is
// the only one, and later models register nothing: whichever came first, the
// type is XOLATreeModel named IXOLATreeModel and nothing is logged.
void settleModelRegistrations()
{
    retireModelRegistration(); // made by a host's model before the module loaded
    {
        XOLATreeModel limited; // the constructor QML uses for IXOLATreeModel {}
    }
    retireModelRegistration();
    IXOLATreeModel* full = nullptr;
    if (CreateXOLATreeModel(&full, nullptr, {}, 0, nullptr, nullptr))
        DeleteXOLATreeModel(&full);
    retireModelRegistration();
}

} // namespace

XOLATreeModelPlugin::XOLATreeModelPlugin(QObject* parent)
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    : QQmlEngineExtensionPlugin(parent)
#else
    : QQmlExtensionPlugin(parent)
#endif
{
    settleModelRegistrations();
    // Keeps the generated registration linked in, also into a static build.
    volatile auto registration = &qml_register_types_com_xolasys_ixolatreemodel;
    Q_UNUSED(registration)
}

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
void XOLATreeModelPlugin::registerTypes(const char* uri)
{
    // Qt 5.15 runs the module's generated registration right after this, in the
    // same registration pass; calling it here too would register the type twice.
    Q_ASSERT(qstrcmp(uri, moduleUri) == 0);
    Q_UNUSED(uri)
}
#endif
