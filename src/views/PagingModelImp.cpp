#include "PagingModelImp.h"

// Placeholder bodies; filled in by the paging work.
PagingModelImp::PagingModelImp(IXOLATreeModel* source, unsigned int numPerPage)
    : XOLATreeModel(nullptr, source ? source->roleNames() : QHash<int, QByteArray>(), 3, nullptr, nullptr)
    , m_sourceModel(source), m_numPerPage(numPerPage) {}
PagingModelImp::~PagingModelImp() = default;
int PagingModelImp::rowCount(const QModelIndex&) const { return 0; }
QVariant PagingModelImp::data(const QModelIndex&, int) const { return QVariant(); }
QString PagingModelImp::FindItemID(int) const { return QString(); }
int PagingModelImp::FindItemRow(const QString&) const { return -1; }
QVariant PagingModelImp::FindItemValue(int, int) const { return QVariant(); }
QVariant PagingModelImp::FindItemValue(int, const QString&) const { return QVariant(); }
QVariant PagingModelImp::FindItemValue(const QString&, int) const { return QVariant(); }
QVariant PagingModelImp::FindItemValue(const QString&, const QString&) const { return QVariant(); }
QVariant PagingModelImp::FindItemValueEx(const QString&, int, bool) const { return QVariant(); }
QVariant PagingModelImp::FindItemValueEx(const QString&, const QString&, bool) const { return QVariant(); }
QObject* PagingModelImp::FindItem(int) const { return nullptr; }
QObject* PagingModelImp::FindItem(const QString&, bool) const { return nullptr; }
int PagingModelImp::page() const { return m_page; }
void PagingModelImp::setPage(int) {}
int PagingModelImp::totalPage() const { return m_totalPage; }
int PagingModelImp::CalcTotalPage() const { return 0; }
int PagingModelImp::CalcSourceRow(int row) const { return row; }
int PagingModelImp::LastPage() const { return 0; }
bool PagingModelImp::IsLastPage() const { return true; }
void PagingModelImp::setTotalPage(int) {}
void PagingModelImp::SourceModelDataChangedHandler(const QModelIndex&, const QModelIndex&) {}
void PagingModelImp::SourceModelCountChangedHandler(const QModelIndex&, int, int) {}
void PagingModelImp::SourceModelItemRemovedHandler(const QModelIndex&, int, int) {}
void PagingModelImp::adjustAnnouncedRowCount() {}
