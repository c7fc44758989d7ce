#ifndef FILTERMODELIMP_H
#define FILTERMODELIMP_H

#include "XOLATreeModel.h"

#include "FilterRules.h"

#include <QtCore/QHash>
#include <QtCore/QPointer>
#include <QtCore/QSet>

/*!
 * A live filtered view of a source model. Its rows are the source's own item
 * objects that pass the rules (or the caller's predicate), in source order at
 * the last full rebuild. Built with option bits 3: the QML engine owns it and
 * it never deletes the source's items.
 */
class FilterModelImp : public XOLATreeModel
{
    Q_OBJECT

public:
    FilterModelImp(IXOLATreeModel* source, const QList<QVariant>& filterRules, bool orAllRules, int newItemPos);
    FilterModelImp(IXOLATreeModel* source, PF_MATCH_ITEM rule, const QVariant& ruleValue, int newItemPos);
    ~FilterModelImp() override;

    QVariant data(const QModelIndex& index, int role) const override;

    // The Find family is the model's own: a view answers from its own rows and
    // id index, not from the source.
    bool UpdateFilterRules(QVariantList filterRules = QVariantList(), bool orAllRules = true) override;
    bool UpdateUserDefinedFilterRules(QVariant filterRules = QVariant()) override;

    bool MatchRule(const XOLATreeItem* item, const QList<QVariant>& rules, bool orAllRules);
    bool IsMatchRule(const XOLATreeItem* item);
    bool ReGenFilterModel();
    //! A new filter view of the item's child model with this view's rules, or null.
    QObject* FindChildModel(XOLATreeItem* item) const;

    IXOLATreeModel* sourceModel() const { return m_sourceModel.data(); }
    QList<QVariant> filterRules() const { return m_filterRules; }
    bool orAllRules() const { return m_orAllRules; }
    int newItemPos() const { return m_newItemPos; }

public slots:
    void SourceModelDataChangedHandler(const QModelIndex& topLeft, const QModelIndex& bottomRight);
    void SourceModelItemAddedHandler(const QModelIndex& parent, int start, int end);
    void SourceModelItemRemovedHandler(const QString& id);
    void SourceModelItemsRemovedHandler(const QStringList& idList);
    void SourceModelAllItemRemovedHandler();
    void ChildModelValueChangedHandler();

private:
    void Initial();
    //! Follows changes under the item's child model (once per item).
    void followChildModel(XOLATreeItem* item);
    //! What ChildModelValueChangedHandler() does for the item whose child model changed.
    void childModelChangedFrom(XOLATreeItem* item);
    //! The view's own connection from an item's valueChanged() is made anew each
    //! time the item enters, so that every change reports its row exactly once.
    void dropValueConnection(XOLATreeItem* item);
    //! The two ways of following a source data change: item by item, or
    //! against a snapshot of the view's ids.
    void followFewChangedRows(int first, int last, QList<XOLATreeItem*>& entering, bool& wholeView);
    void followManyChangedRows(int first, int last, QList<XOLATreeItem*>& entering, bool& wholeView);
    //! Takes one row out with the notices RemoveOne(id) sends for a view.
    void removeListedRow(int row);
    //! True while the item is one of the source's rows.
    bool isListedBySource(const XOLATreeItem* item) const;
    //! The rule list compiled; compiled again only when a different list is asked for.
    CompiledFilterRules compiledRules(const QList<QVariant>& rules) const;
    //! Plain variants for QML objects and arrays; everything else unchanged.
    static QVariant plainRuleValue(const QVariant& value);

    // Guarded so that a view left behind by a deleted source stays harmless.
    QPointer<IXOLATreeModel> m_sourceModel;
    QList<QVariant> m_filterRules;
    QVariant m_ruleValue;
    bool m_orAllRules = false;
    PF_MATCH_ITEM m_userDefinedRule;
    int m_newItemPos = POS_TAIL;
    // Child models being searched right now: a tree that leads back into itself
    // must not be walked forever.
    QSet<const QObject*> m_descentPath;
    // The connection from each source item's childModelValueChanged(); it
    // reads false once disconnected or once the item is gone.
    QHash<const XOLATreeItem*, QMetaObject::Connection> m_childRelays;
    mutable QList<QVariant> m_compiledFrom;
    mutable CompiledFilterRules m_compiled;
};

#endif // FILTERMODELIMP_H
