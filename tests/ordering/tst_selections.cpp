// Selections and persistent indexes follow their items across every sort, in
// the model and in a filter view that keeps itself sorted, while the notices
// of each sort stay exactly what they are without any selection.

#include "ModelTesters.h"
#include "SignalLog.h"
#include "TestSupport.h"
#include "XOLATreeModel.h"

#include <QtCore/QItemSelectionModel>
#include <QtCore/QPersistentModelIndex>
#include <QtCore/QPointer>
#include <QtTest/QtTest>

#include <functional>
#include <memory>

using namespace TestSupport;

namespace {

using Operation = std::function<void(XOLATreeModel*)>;
using ModelPtr = std::unique_ptr<XOLATreeModel>;

const int kValueRole = ValueItem::ValueRole;

QString compareFile(const char* name)
{
    return QStringLiteral(XOLA_COMPARE_DIR "/") + QLatin1String(name);
}

QVariantList rule(const char* roleName, bool ascending)
{
    QVariantMap map;
    map.insert(QStringLiteral("RoleName"), QString::fromLatin1(roleName));
    map.insert(QStringLiteral("Ascending"), ascending);
    return {map};
}

//! Rows i0..i4 with values 3, 1, 2, 5, 4.
ModelPtr sampleModel()
{
    ModelPtr model(createModel(0, extendedRoleNames()));
    appendEach(model.get(), valueItems({3, 1, 2, 5, 4}));
    return model;
}

QString idAt(const QAbstractItemModel* model, const QModelIndex& index)
{
    return index.isValid() ? model->data(index, XOLATreeItem::IdRole).toString() : QStringLiteral("<invalid>");
}

QStringList selectedIds(const QItemSelectionModel& selection)
{
    QStringList result;
    const QModelIndexList indexes = selection.selectedIndexes();
    for (const QModelIndex& index : indexes)
        result << idAt(selection.model(), index);
    result.sort();
    return result;
}

//! Selects the rows of the given ids, each on its own.
void selectIds(QItemSelectionModel& selection, const IXOLATreeModel* model, const QStringList& ids)
{
    for (const QString& id : ids)
        selection.select(model->index(model->FindItemRow(id), 0), QItemSelectionModel::Select);
}

XOLATreeItem* valueItem(const QString& id, int value)
{
    return new ValueItem(id, QStringLiteral("name-") + id, value);
}

} // namespace

Q_DECLARE_METATYPE(Operation)

class tst_Selections : public ModelTesterSuite
{
    Q_OBJECT

private slots:
    void followSorts_data()
    {
        QTest::addColumn<Operation>("operation");
        QTest::addColumn<QStringList>("order");
        // The script sort ends with a lone modelReset(), on which a selection
        // model clears itself; persistent indexes still follow their items.
        QTest::addColumn<bool>("selectionKept");
        QTest::addColumn<ModelTesters::Departures>("departures");

        QTest::newRow("SortByRole(int)") << Operation([](XOLATreeModel* m) { m->SortByRole(kValueRole, true); })
                                         << QStringList{"i1", "i2", "i0", "i4", "i3"} << true
            << ModelTesters::Departures();
        QTest::newRow("SortByRole(name)")
            << Operation([](XOLATreeModel* m) { m->SortByRole(QStringLiteral("valueRole"), false); })
            << QStringList{"i3", "i4", "i0", "i2", "i1"} << true
            << ModelTesters::Departures();
        QTest::newRow("SortByRole(less-than)")
            << Operation([](XOLATreeModel* m) {
                   m->SortByRole(kValueRole, true, [](const QVariant& a, const QVariant& b) {
                       return a.toInt() > b.toInt();
                   });
               })
            << QStringList{"i3", "i4", "i0", "i2", "i1"} << true
            << ModelTesters::Departures();
        QTest::newRow("SortByRoleAndKeep") << Operation([](XOLATreeModel* m) { m->SortByRoleAndKeep(kValueRole, true); })
                                           << QStringList{"i1", "i2", "i0", "i4", "i3"} << true
            << ModelTesters::Departures();
        QTest::newRow("SortByRoleAndKeep, then an insertion re-sorts")
            << Operation([](XOLATreeModel* m) {
                   m->SortByRoleAndKeep(kValueRole, false);
                   m->AppendItem(valueItem(QStringLiteral("n"), 0));
                   m->InsertItem(0, valueItem(QStringLiteral("m"), 9));
               })
            << QStringList{"m", "i3", "i4", "i0", "i2", "i1", "n"} << true
            << ModelTesters::Departures();
        QTest::newRow("SortByRules") << Operation([](XOLATreeModel* m) { m->SortByRules(rule("valueRole", true)); })
                                     << QStringList{"i1", "i2", "i0", "i4", "i3"} << true
            << ModelTesters::Departures();
        QTest::newRow("SortByRules keep, then loads re-sort")
            << Operation([](XOLATreeModel* m) {
                   m->SortByRules(rule("valueRole", true), XOLATreeModel::KeepSorting);
                   m->AppendItemsList({valueItem(QStringLiteral("n"), 0), valueItem(QStringLiteral("m"), 9)});
                   m->PrependItem(valueItem(QStringLiteral("k"), 4));
               })
            << QStringList{"n", "i1", "i2", "i0", "i4", "k", "i3", "m"} << true
            << ModelTesters::Departures{ModelTesters::ListLoadAfterChange, ModelTesters::PrependAtOldEnd};
        QTest::newRow("SortByRoleByQMLFunction")
            << Operation([](XOLATreeModel* m) {
                   m->SortByRoleByQMLFunction(kValueRole, true, compareFile("less.qml"), QStringLiteral("greater"));
               })
            << QStringList{"i3", "i4", "i0", "i2", "i1"} << true
            << ModelTesters::Departures{ModelTesters::FunctionSortLoneLayout};
        QTest::newRow("SortByRoleByScriptFunction")
            << Operation([](XOLATreeModel* m) {
                   m->SortByRoleByScriptFunction(QStringLiteral("valueRole"), true, compareFile("less.js"),
                                                 QStringLiteral("less"));
               })
            << QStringList{"i1", "i2", "i0", "i4", "i3"} << false
            << ModelTesters::Departures{ModelTesters::FunctionSortLoneLayout, ModelTesters::ScriptSortLoneReset};
    }

    void followSorts()
    {
        QFETCH(Operation, operation);
        QFETCH(QStringList, order);
        QFETCH(bool, selectionKept);
        QFETCH(ModelTesters::Departures, departures);
        ModelTesters::expect(departures);

        // The notices of the operation without any selection or persistent index.
        ModelPtr plain = sampleModel();
        SignalLog plainLog(plain.get());
        operation(plain.get());
        QCOMPARE(ids(plain.get()), order);

        ModelPtr model = sampleModel();
        QItemSelectionModel selection(model.get(), nullptr);
        selectIds(selection, model.get(), {QStringLiteral("i0"), QStringLiteral("i3")});
        const QPersistentModelIndex persistent(model->index(model->FindItemRow(QStringLiteral("i2")), 0));
        SignalLog log(model.get());

        operation(model.get());

        QCOMPARE(ids(model.get()), order);
        QCOMPARE(log.take(), plainLog.take());
        QCOMPARE(selectedIds(selection), selectionKept ? QStringList({"i0", "i3"}) : QStringList());
        QVERIFY(persistent.isValid());
        QCOMPARE(idAt(model.get(), persistent), QStringLiteral("i2"));
        QCOMPARE(persistent.row(), order.indexOf(QStringLiteral("i2")));
    }

    void followSortsOfAFilterView()
    {
        ModelPtr source = sampleModel();
        ModelTesters::expect(ModelTesters::FilterEntryAfterChange);
        QPointer<XOLATreeModel> view(ModelTesters::watch(qobject_cast<XOLATreeModel*>(source->GetFilterModel())));
        QVERIFY(view);
        view->SortByRules(rule("valueRole", true), XOLATreeModel::KeepSorting);
        QCOMPARE(ids(view), QStringList({"i1", "i2", "i0", "i4", "i3"}));

        QItemSelectionModel selection(view, nullptr);
        selectIds(selection, view, {QStringLiteral("i0"), QStringLiteral("i3")});
        const QPersistentModelIndex persistent(view->index(view->FindItemRow(QStringLiteral("i2")), 0));

        // A new source row joins the view, which sorts itself again.
        source->AppendItem(valueItem(QStringLiteral("n"), 0));
        QCOMPARE(ids(view), QStringList({"n", "i1", "i2", "i0", "i4", "i3"}));
        QCOMPARE(selectedIds(selection), QStringList({"i0", "i3"}));
        QCOMPARE(idAt(view, persistent), QStringLiteral("i2"));

        // A changed source row re-sorts the view too.
        auto* changed = qobject_cast<ValueItem*>(source->FindItem(QStringLiteral("i2")));
        QVERIFY(changed);
        changed->setExtra(kValueRole, 10);
        QCOMPARE(ids(view), QStringList({"n", "i1", "i0", "i4", "i3", "i2"}));
        QCOMPARE(selectedIds(selection), QStringList({"i0", "i3"}));
        QCOMPARE(idAt(view, persistent), QStringLiteral("i2"));
        QCOMPARE(persistent.row(), 5);
        delete view.data();
    }

    void itemsListedTwiceKeepBothIndexes()
    {
        ModelPtr model = sampleModel();
        // A host may list one object twice through the row list it is handed.
        QList<XOLATreeItem*>* rows = model->GetModelItemList();
        XOLATreeItem* twice = rows->at(0);
        rows->append(twice);
        const QPersistentModelIndex first(model->index(0, 0));
        const QPersistentModelIndex second(model->index(5, 0));
        model->SortByRole(kValueRole, false);
        QCOMPARE(ids(model.get()), QStringList({"i3", "i4", "i0", "i0", "i2", "i1"}));
        QCOMPARE(idAt(model.get(), first), QStringLiteral("i0"));
        QCOMPARE(idAt(model.get(), second), QStringLiteral("i0"));
        QVERIFY(first.row() != second.row());
        // One of the two rows goes again, so the item is deleted once.
        rows = model->GetModelItemList();
        rows->removeAt(rows->lastIndexOf(twice));
    }

    void followASinglePrepend()
    {
        ModelTesters::expect(ModelTesters::PrependAtOldEnd);
        // The row is announced at the old end while the item goes to the front;
        // persistent indexes are put back on their items all the same.
        ModelPtr model = sampleModel();
        QItemSelectionModel selection(model.get(), nullptr);
        selectIds(selection, model.get(), {QStringLiteral("i4")});
        const QPersistentModelIndex persistent(model->index(0, 0));
        SignalLog log(model.get());
        QVERIFY(model->PrependItem(valueItem(QStringLiteral("p"), 7)));
        QCOMPARE(log.take(), QStringList({"rowsAboutToBeInserted(5,5)", "rowsInserted(5,5)", "rowCountChanged()"}));
        QCOMPARE(ids(model.get()), QStringList({"p", "i0", "i1", "i2", "i3", "i4"}));
        QCOMPARE(selectedIds(selection), QStringList({"i4"}));
        QCOMPARE(idAt(model.get(), persistent), QStringLiteral("i0"));
    }

    void moveRowStaysAReset()
    {
        ModelPtr model = sampleModel();
        const QPersistentModelIndex persistent(model->index(1, 0));
        SignalLog log(model.get());
        model->MoveRow(1, 3);
        QCOMPARE(log.take(), QStringList({"modelAboutToBeReset()", "modelReset()"}));
        // A reset invalidates persistent indexes, as Qt documents.
        QVERIFY(!persistent.isValid());
        QCOMPARE(ids(model.get()), QStringList({"i0", "i2", "i3", "i1", "i4"}));
    }
};

QTEST_GUILESS_MAIN(tst_Selections)

#include "tst_selections.moc"
