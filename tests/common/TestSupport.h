#ifndef TESTS_TESTSUPPORT_H
#define TESTS_TESTSUPPORT_H

#include "XOLATreeModel.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtCore/QHash>
#include <QtCore/QStringList>

#include <functional>

/*!
 * An item with extra roles, written the way hosts write theirs: both getData
 * forms are overridden. Roles: 261 "valueRole", 262 "groupRole", 263 "textRole".
 */
class ValueItem : public XOLATreeItem
{
    Q_OBJECT
public:
    enum ExtraRoles { ValueRole = XOLATreeItem::LastRole + 1, GroupRole, TextRole };

    ValueItem(const QString& id, const QString& name, const QVariant& value = QVariant(),
              QObject* childModel = nullptr);

    QVariant getData(int role) const override;
    QVariant getData(const QString& roleName) const override;
    void setData(int role, QVariant value) override;
    void setData(const QString& roleName, QVariant value) override;

    //! Sets an extra role's value and signals the change.
    void setExtra(int role, const QVariant& value);

    static int extraRole(const QString& roleName);

private:
    QHash<int, QVariant> m_extras;
};

namespace TestSupport {

//! The default names plus the three extra roles of ValueItem.
QHash<int, QByteArray> extendedRoleNames();

//! A model made through the entry point (nullptr on failure); it is handed to
//! the made-model hook when one is set.
XOLATreeModel* createModel(int flags = 0, const QHash<int, QByteArray>& roleNames = {},
                           PF_COPY_ITEM copy = nullptr, PF_MATCH_ITEM match = nullptr);

//! Sets the function createModel() hands each new model to, or none (an empty
//! function). ModelTesters sets it for the length of a test case, so that every
//! model the case makes gets a tester.
void setMadeModelHook(std::function<void(QObject*)> hook);

//! Appends the items one at a time, each with its own insertion notices: how a
//! case fills a model when the loading is not what it tests (the list loaders
//! announce their rows after the change, see ModelTesters::ListLoadAfterChange).
void appendEach(XOLATreeModel* model, const QList<XOLATreeItem*>& list);

//! Plain items named after their ids ("a" gets name "name-a").
XOLATreeItem* item(const QString& id, QObject* childModel = nullptr);
QList<XOLATreeItem*> items(const QStringList& ids);
//! ValueItems with the given values for valueRole, ids "i0", "i1"...
QList<XOLATreeItem*> valueItems(const QVariantList& values);

//! Ids of the model's rows as the model answers them (FindItemID for each row).
QStringList ids(const IXOLATreeModel* model);
//! Names of the rows (FindItemValue(row, NameRole)).
QStringList names(const IXOLATreeModel* model);
//! Values of one role, row by row, as strings.
QStringList values(const IXOLATreeModel* model, int role);

//! Runs pending deferred deletions.
inline void flushDeferredDeletes() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

} // namespace TestSupport

#endif // TESTS_TESTSUPPORT_H
