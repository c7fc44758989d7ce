#ifndef TESTS_MODELTESTERS_H
#define TESTS_MODELTESTERS_H

#include <QtCore/QAbstractItemModel>
#include <QtCore/QList>
#include <QtCore/QMetaType>
#include <QtCore/QObject>
#include <QtCore/QString>

/*!
 * Qt's model tester (QAbstractItemModelTester) on every model and view a test
 * case builds, for the whole case, as KDE's and Qt's own item-model tests have
 * it. A suite derives from ModelTesterSuite, which opens each case in init()
 * and judges it in cleanup().
 *
 * While a case is open, TestSupport::createModel() watches every model it
 * makes; views, and models made any other way, are watched with watch(). A
 * case that exercises one of the library's deliberate departures from Qt's
 * model protocol declares it with expect(). finishCase() then wants exactly the
 * complaints that departure brings, at least once; any other complaint, or a
 * declared departure that never showed, fails the case.
 *
 * What the testers see:
 *  - Each model through an identity proxy whose rows have no children (the
 *    models' rowCount() ignores its parent, so the tester would otherwise walk
 *    an endless tree) and whose display text is the row's id, so that the
 *    tester's checks of the neighbours of inserted and removed rows compare
 *    real rows instead of two empty values.
 *  - Warning mode: complaints are captured through a message handler, so a
 *    complaint never stops a case half-way, and are compared at the end.
 *  - Begin and end notices are paired by this class on every Qt the way Qt 6's
 *    tester pairs them (Qt 5's tester does not), and Qt 6's own pairing
 *    complaints are left out in favour of these; on Qt 6 the two are checked to
 *    agree notice by notice. A case therefore expects the same on Qt 5 and 6.
 */
class ModelTesters
{
public:
    /*!
     * The library's deliberate departures from Qt's model protocol, by name:
     * the one place where they are listed. Existing hosts rely on each of them;
     * the tester complaints each one brings are in ModelTesters.cpp.
     */
    enum Departure {
        //! PrependItem announces its single row at the old end of the list
        //! (rowsAboutToBeInserted(n, n)) while the item goes to row 0.
        PrependAtOldEnd,
        //! AppendItemsList, PrependItemsList, ReplaceItemsList's load step and
        //! ReplaceItemsListEx announce rows once they are already in (or, for
        //! the rows ReplaceItemsListEx drops, already out).
        ListLoadAfterChange,
        //! A filter view announces the rows it takes in once it lists them:
        //! rows its source adds, rows that pass after a value change (also one
        //! in a child model), the rows of a rebuild.
        FilterEntryAfterChange,
        //! A group view announces the groups of a rebuild once it has built
        //! them: after a new group role, and after every source change while it
        //! keeps the source's order.
        GroupRebuildAfterChange,
        //! A paging view brings its announced row count in line after its rows
        //! changed: a page move, rows added or removed on or before its page.
        PagingRowsAfterChange,
        //! A paging view refreshes row 0 of a page that shows no rows.
        PagingRefreshesEmptyPage,
        //! The window announces the rows a move or a new size adds or takes
        //! after the change; a new size announces the old rows' removal before
        //! any change, and, while the first row lies past the source's end, one
        //! row that it does not show.
        WindowRowsAfterChange,
        //! The window's row count is negative while its first row lies past the
        //! source's end: the source shrank under it, or emptied as it went.
        WindowNegativeCount,
        //! The window reports changes of rows it does not show: source rows just
        //! past it, and row 0 when it shows none.
        WindowChangesPastItsRows,
        //! Sorting by a script function ends with modelReset() without a
        //! modelAboutToBeReset().
        ScriptSortLoneReset,
        //! Sorting by a script or QML function sends layoutChanged() without a
        //! layoutAboutToBeChanged().
        FunctionSortLoneLayout,
        //! Sorting an empty model by rules or by a script or QML function sends
        //! dataChanged() over an empty range (invalid indexes).
        EmptySortDataChanged,
        //! The views (filter, group, paging, window) pass on their source's
        //! modelReset() and layoutChanged() without the begin notices; MoveRow
        //! resets the model, so its views send a lone modelReset().
        ViewsForwardLoneEnds,
    };
    using Departures = QList<Departure>;

    //! Opens a case: watch() attaches testers from now on. Call from init().
    static void startCase();
    //! Closes the case: detaches every tester and answers what the testers
    //! found that the case did not declare, and what it declared that they did
    //! not find; empty when the two agree. A case that failed already gets the
    //! findings printed beside its failure instead. Call from cleanup(), after
    //! deferred deletions ran.
    static QString finishCase();

    //! Attaches a tester to the model (a QAbstractItemModel, else ignored) for
    //! the rest of the case, or until the model goes; answers the model. Does
    //! nothing outside a case or for a model already watched.
    template <typename Model>
    static Model* watch(Model* model)
    {
        watchObject(model);
        return model;
    }
    //! Declares that the case exercises a departure.
    static void expect(Departure departure);
    static void expect(const Departures& departures);

    //! True while a case is open.
    static bool caseOpen();
    //! The departure's name as the findings show it.
    static QString name(Departure departure);

private:
    static void watchObject(QObject* object);
};

Q_DECLARE_METATYPE(ModelTesters::Departures)

/*!
 * The base of a suite whose cases run under the model testers: each case is
 * opened before it runs and judged after it, once the deferred deletions ran.
 * QtTest finds init() and cleanup() here by name.
 */
class ModelTesterSuite : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
};

#endif // TESTS_MODELTESTERS_H
