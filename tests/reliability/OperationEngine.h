#ifndef TESTS_OPERATIONENGINE_H
#define TESTS_OPERATIONENGINE_H

#include "XOLATreeModelGlobal.h"

#include <QtCore/QHash>
#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QPointer>
#include <QtCore/QSet>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariant>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <random>

class FilterModelImp;
class GroupModelImp;
class NoticeBalance;
class PagingModelImp;
class PartialModel;
class QAbstractItemModel;
class XOLATreeItem;
class XOLATreeModel;
class IXOLATreeModel;

/*!
 * Where the engine's choices come from: a seeded generator for the fixed-seed
 * runs, or the bytes of a fuzzer's input.
 */
class ChoiceSource
{
public:
    virtual ~ChoiceSource() = default;
    //! A number in 0..n-1 (0 when n < 2).
    virtual int below(int n) = 0;
    //! True once a byte input is used up; a seeded source never is.
    virtual bool exhausted() const = 0;

    int between(int low, int high) { return low + below(high - low + 1); }
    bool percent(int p) { return below(100) < p; }
    template <typename T>
    const T& pick(const QList<T>& list) { return list.at(below(list.size())); }
};

class SeededChoices : public ChoiceSource
{
public:
    explicit SeededChoices(quint32 seed) : m_generator(seed) {}
    int below(int n) override;
    bool exhausted() const override { return false; }

private:
    std::mt19937 m_generator;
};

class ByteChoices : public ChoiceSource
{
public:
    ByteChoices(const std::uint8_t* data, std::size_t size) : m_data(data), m_size(size) {}
    //! One byte per choice of up to 256 values, two above; zeros once used up.
    int below(int n) override;
    bool exhausted() const override { return m_position >= m_size; }

private:
    int nextByte();

    const std::uint8_t* m_data;
    std::size_t m_size;
    std::size_t m_position = 0;
};

/*!
 * Where the engine's rule-shaped arguments come from when a caller hands them
 * over instead of the engine making them up: the rules fuzz target feeds
 * filter rules, sort rules, predicate values, sort flags, comparison files and
 * item values from its input through this. The engine then asks for them at
 * the points where it would otherwise draw its own, so every operation, its
 * bookkeeping and every check stay the engine's.
 */
class ArgumentSource
{
public:
    virtual ~ArgumentSource() = default;
    //! For GetFilterModel and UpdateFilterRules.
    virtual QVariantList filterRules() = 0;
    //! For SortByRules, and its flag.
    virtual QVariantList sortRules() = 0;
    virtual int sortFlag() = 0;
    //! For GetFilterModelByUserDefinedRules and UpdateUserDefinedFilterRules.
    virtual QVariant predicateValue() = 0;
    //! A comparison file (empty for none) and the function to call in it.
    virtual QString comparisonFile(bool qml) = 0;
    virtual QString comparisonFunction(bool qml) = 0;
    //! A value for an item's role; false leaves the choice to the engine.
    virtual bool itemValue(QVariant* value) = 0;
    //! The predicate of the user-defined filter views; an empty one keeps the engine's.
    virtual PF_MATCH_ITEM matchFunction() = 0;
};

/*!
 * Drives a model with child models and every kind of view attached (two rule
 * filter views, a predicate filter view, a group view, a paging view and the
 * model's own partial window) through random sequences of public operations
 * with random and hostile arguments, and checks after every step what the
 * library guarantees. See tst_randomized.cpp for the list of deliberate
 * behaviours that leave a view stale and how the checks allow for them.
 *
 * Everything runs on the calling thread, which must have a QCoreApplication.
 * Deferred deletions are run after every step, so an item used after its
 * deletion shows up under AddressSanitizer in the step that caused it.
 */
class OperationEngine
{
public:
    //! With arguments set, the rule-shaped arguments come from there (see ArgumentSource).
    OperationEngine(ChoiceSource& choices, const QString& dataDir, ArgumentSource* arguments = nullptr);
    ~OperationEngine();

    OperationEngine(const OperationEngine&) = delete;
    OperationEngine& operator=(const OperationEngine&) = delete;

    //! Runs one operation and checks the invariants; false when one broke.
    bool step();
    //! Runs the operation of that name (see operationNames()) in the same way.
    bool step(const QString& operationName);
    //! Deletes the views and the models, runs pending deletions and checks that
    //! everything the models were meant to delete is gone; false on a leak.
    bool finish();
    //! finish(), and on any failure its message and the last operations on
    //! standard error; for the fuzz targets, which then abort.
    bool finishOrReport();

    QString failure() const { return m_failure; }
    //! The last operations run, oldest first, for failure messages.
    QStringList trail() const { return m_trail; }
    int steps() const { return m_steps; }
    //! How often each operation ran, and the names of all of them.
    QMap<QString, int> operationCounts() const { return m_counts; }
    QStringList operationNames() const;
    //! How often each deliberate behaviour made the views differ from a rebuild.
    QMap<QString, int> staleReasons() const { return m_staleReasons; }
    //! How often each comparison with a rebuild was made.
    QMap<QString, int> comparisons() const { return m_checked; }
    //! The option bits of the main model.
    int rootFlags() const { return m_rootFlags; }

private:
    struct Operation
    {
        int weight;
        const char* name;
        std::function<void()> run;
    };
    enum class ModelKind { Root, Child, RuleFilter, HeadFilter, PredicateFilter, Group, Member, Paging, Partial };
    struct Watched
    {
        QPointer<QAbstractItemModel> model;
        QPointer<NoticeBalance> balance;
        ModelKind kind;
    };

    // ---- set-up and bookkeeping ----
    void buildWorld();
    bool runOperation(const Operation& op);
    void buildOperations();
    XOLATreeModel* newChildModel();
    XOLATreeItem* newItem();
    XOLATreeItem* newItemWithId(const QString& id);
    QList<XOLATreeItem*> newItemList(bool withNulls);
    void watch(QAbstractItemModel* model, ModelKind kind, const QString& name);
    void watchGroupMembers();
    void settle();
    void note(const QString& text);
    bool fail(const QString& text);
    void markViewsStale(const char* reason);

    // ---- choices ----
    QString randomId();
    QString randomRoleName();
    int randomRole();
    QVariant randomValue();
    QVariant randomRuleValue();
    QVariantList randomFilterRules();
    QVariantList randomSortRules();
    std::function<bool(const QVariant&, const QVariant&)> randomLessThan();
    XOLATreeModel* randomOwningModel();
    IXOLATreeModel* randomAnyModel();
    XOLATreeItem* randomListedItem(XOLATreeModel* model);
    QString comparisonFile(bool qml);

    // ---- views ----
    void makeRuleFilter(bool head);
    void makePredicateFilter();
    void makeGroup();
    void makePaging();

    // ---- checks ----
    bool checkAll();
    bool checkNothingDeletedIsHeld();
    bool checkBalances();
    bool checkLookups(IXOLATreeModel* model, const QString& name, bool exactIds);
    bool checkFilter(FilterModelImp* view, const QString& name);
    bool checkGroup();
    bool checkPaging();
    bool checkPartial();
    QList<XOLATreeModel*> owningModels() const;
    bool isListedSomewhere(const XOLATreeItem* item) const;
    //! True when model lies in the tree below item.
    bool isBelow(const QObject* model, const XOLATreeItem* item) const;
    //! The item of the main model's tree whose child model is model, or null;
    //! firstLevel tells whether that item is a row of the main model itself.
    XOLATreeItem* ownerInTree(const QObject* model, bool* firstLevel) const;
    bool inRootTree(const QObject* model) const;
    //! Which views the changes announced by child models in this step left stale.
    void childModelsChanged();
    //! Notes the models whose id index may have lost entries for good: equal
    //! ids or an id changed while listed (restartsIndex: an emptied model
    //! starts afresh).
    void markDirtyIndexes(bool restartsIndex);

    ChoiceSource& m_choices;
    QString m_dataDir;
    ArgumentSource* m_arguments = nullptr;
    QString m_failure;
    QStringList m_trail;
    QMap<QString, int> m_counts;
    QMap<QString, int> m_staleReasons;
    QMap<QString, int> m_checked;
    int m_steps = 0;
    int m_serial = 0;
    bool m_finished = false;

    int m_rootFlags = 0;
    //! How often a new id is one of a few shared ones rather than a fresh one.
    int m_sharedIdPercent = 60;
    QPointer<XOLATreeModel> m_root;
    PartialModel* m_partial = nullptr;
    QList<QPointer<XOLATreeModel>> m_childModels;
    QPointer<FilterModelImp> m_ruleFilter;
    QPointer<FilterModelImp> m_headFilter;
    QPointer<FilterModelImp> m_predicateFilter;
    QPointer<GroupModelImp> m_group;
    QPointer<PagingModelImp> m_paging;
    QList<Watched> m_watched;

    //! Every item the engine made, alive or not.
    QList<QPointer<XOLATreeItem>> m_items;
    //! Items listed by the in-place swap, which connects nothing: their changes
    //! reach no view.
    QSet<const XOLATreeItem*> m_unrelayed;
    //! Items whose id changed while a model listed them.
    QSet<const XOLATreeItem*> m_renamed;
    //! Per filter view, rows of the main model whose child-model relay the view
    //! never connected.
    QHash<const FilterModelImp*, QSet<const XOLATreeItem*>> m_unrelayedParents;
    //! Filter views whose rows are known to equal a rebuild (as sets).
    QSet<const FilterModelImp*> m_exactFilters;
    //! Models whose id index may have lost entries (equal or changed ids).
    QSet<const QObject*> m_dirtyIndex;
    bool m_groupExact = true;
    //! Set when the partial window announced a row it does not show.
    bool m_partialPhantom = false;
    //! Set while the partial window counts rows the main model dropped without
    //! a notice.
    bool m_countsStale = false;

    QList<Operation> m_operations;
    int m_totalWeight = 0;
    QString m_operation;
    QString m_current;
};

#endif // TESTS_OPERATIONENGINE_H
