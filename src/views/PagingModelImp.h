#ifndef PAGINGMODELIMP_H
#define PAGINGMODELIMP_H

#include "XOLATreeModel.h"

#include <QtCore/QPointer>

/*!
 * One page of a source model. Keeps no rows of its own: view row r is source
 * row numPerPage * page + r. Page arithmetic is unsigned 32-bit; a page size of
 * 0 means every row on one page.
 */
class PagingModelImp : public XOLATreeModel
{
    Q_OBJECT

public:
    PagingModelImp(IXOLATreeModel* source, unsigned int numPerPage);
    ~PagingModelImp() override;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;

    QString FindItemID(int row) const override;
    int FindItemRow(const QString& id) const override;
    QVariant FindItemValue(int row, int role) const override;
    QVariant FindItemValue(int row, const QString& roleName) const override;
    QVariant FindItemValue(const QString& id, int role) const override;
    QVariant FindItemValue(const QString& id, const QString& roleName) const override;
    QVariant FindItemValueEx(const QString& id, int role, bool includeChildModel) const override;
    QVariant FindItemValueEx(const QString& id, const QString& roleName, bool includeChildModel) const override;
    QObject* FindItem(int row) const override;
    QObject* FindItem(const QString& id, bool includeChildModel = false) const override;
    int page() const override;
    void setPage(int page) override;
    int totalPage() const override;

    int CalcTotalPage() const;
    int CalcSourceRow(int row) const;
    int LastPage() const;
    bool IsLastPage() const;
    void setTotalPage(int totalPage);
    unsigned int numPerPage() const { return m_numPerPage; }
    IXOLATreeModel* sourceModel() const { return m_sourceModel.data(); }

public slots:
    void SourceModelDataChangedHandler(const QModelIndex& topLeft, const QModelIndex& bottomRight);
    void SourceModelCountChangedHandler(const QModelIndex& parent, int start, int end);
    void SourceModelItemRemovedHandler(const QModelIndex& parent, int start, int end);

private:
    void adjustAnnouncedRowCount();
    void emitWholePageChanged();

    QPointer<IXOLATreeModel> m_sourceModel;
    unsigned int m_numPerPage = 0;
    int m_page = 0;
    int m_totalPage = 0;
    int m_lastRowCount = 0;
};

#endif // PAGINGMODELIMP_H
