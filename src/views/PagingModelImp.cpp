#include "PagingModelImp.h"

#include "MetaConnect.h"
#include "RowNotices.h"

namespace {
// A page size of 0 means "everything on one page".
constexpr unsigned int AllRowsOnOnePage = 4294967295u;

QVariant valueOf(const QObject* object, int role)
{
    auto* item = qobject_cast<const XOLATreeItem*>(object);
    return item ? item->getData(role) : QVariant();
}

QVariant valueOf(const QObject* object, const QString& roleName)
{
    auto* item = qobject_cast<const XOLATreeItem*>(object);
    return item ? item->getData(roleName) : QVariant();
}
} // namespace

PagingModelImp::PagingModelImp(IXOLATreeModel* source, unsigned int numPerPage)
    // Options 1 and 2: the QML engine owns the view, and the source's items it
    // shows are never disposed of by it.
    : XOLATreeModel(nullptr, source ? source->roleNames() : QHash<int, QByteArray>(),
                    JavaScriptOwnershipOption | KeepRemovedItemsOption, nullptr, nullptr)
    , m_sourceModel(source)
    , m_numPerPage(numPerPage == 0 ? AllRowsOnOnePage : numPerPage)
    , m_page(0)
    , m_totalPage(0)
{
    setTotalPage(CalcTotalPage());
    m_lastRowCount = rowCount();
    if (source) {
        MetaConnect::connect(source, "modelReset()", this, "modelReset()");
        MetaConnect::connect(source, "dataChanged(QModelIndex,QModelIndex)",
                             this, "SourceModelDataChangedHandler(QModelIndex,QModelIndex)");
        MetaConnect::connect(source, "rowsInserted(QModelIndex,int,int)",
                             this, "SourceModelCountChangedHandler(QModelIndex,int,int)");
        MetaConnect::connect(source, "rowsRemoved(QModelIndex,int,int)",
                             this, "SourceModelCountChangedHandler(QModelIndex,int,int)");
        MetaConnect::connect(source, "layoutChanged()", this, "layoutChanged()");
    }
}

PagingModelImp::~PagingModelImp() = default;

// ---- page arithmetic (unsigned 32-bit on the page size) ---------------------

int PagingModelImp::CalcTotalPage() const
{
    if (!m_sourceModel)
        return 0;
    const unsigned int pages = unsigned(m_sourceModel->rowCount()) / m_numPerPage;
    const unsigned int rest = unsigned(m_sourceModel->rowCount()) % m_numPerPage;
    return int(pages + (rest != 0 ? 1u : 0u));
}

int PagingModelImp::CalcSourceRow(int row) const
{
    return int(m_numPerPage * unsigned(m_page) + unsigned(row));
}

int PagingModelImp::LastPage() const
{
    return m_totalPage > 0 ? m_totalPage - 1 : 0;
}

bool PagingModelImp::IsLastPage() const
{
    return m_page == LastPage();
}

void PagingModelImp::setTotalPage(int totalPage)
{
    if (totalPage < 0 || totalPage == m_totalPage)
        return;
    m_totalPage = totalPage;
    emit totalPageChanged(totalPage);
}

// ---- rows --------------------------------------------------------------------

int PagingModelImp::rowCount(const QModelIndex& /*parent*/) const
{
    if (!IsLastPage())
        return int(m_numPerPage);
    const unsigned int count = m_sourceModel ? unsigned(m_sourceModel->rowCount()) : 0u;
    const unsigned int rest = count % m_numPerPage;
    if (rest != 0)
        return int(rest);
    // A full last page; an empty source has no rows at all.
    return count == 0 ? 0 : int(m_numPerPage);
}

QVariant PagingModelImp::data(const QModelIndex& index, int role) const
{
    const int row = index.row();
    if (!m_sourceModel || row < 0 || row >= rowCount())
        return QVariant();
    return m_sourceModel->FindItemValue(CalcSourceRow(row), role);
}

// ---- lookups: rows through the page, ids in the whole source -----------------

QObject* PagingModelImp::FindItem(int row) const
{
    if (!m_sourceModel)
        return nullptr;
    return m_sourceModel->FindItem(CalcSourceRow(row));
}

QObject* PagingModelImp::FindItem(const QString& id, bool includeChildModel) const
{
    // The item may lie on another page.
    return m_sourceModel ? m_sourceModel->FindItem(id, includeChildModel) : nullptr;
}

QString PagingModelImp::FindItemID(int row) const
{
    auto* item = qobject_cast<XOLATreeItem*>(FindItem(row));
    return item ? item->id() : QString();
}

int PagingModelImp::FindItemRow(const QString& id) const
{
    if (!m_sourceModel)
        return -1;
    // The position within a page, whichever page holds the item; an unknown id
    // (-1 in the source) comes out as 4294967295 modulo the page size. Hosts
    // rely on both.
    return int(unsigned(m_sourceModel->FindItemRow(id)) % m_numPerPage);
}

QVariant PagingModelImp::FindItemValue(int row, int role) const
{
    return valueOf(FindItem(row), role);
}

QVariant PagingModelImp::FindItemValue(int row, const QString& roleName) const
{
    return valueOf(FindItem(row), roleName);
}

QVariant PagingModelImp::FindItemValue(const QString& id, int role) const
{
    return valueOf(FindItem(id, false), role);
}

QVariant PagingModelImp::FindItemValue(const QString& id, const QString& roleName) const
{
    return valueOf(FindItem(id, false), roleName);
}

QVariant PagingModelImp::FindItemValueEx(const QString& id, int role, bool includeChildModel) const
{
    return valueOf(FindItem(id, includeChildModel), role);
}

QVariant PagingModelImp::FindItemValueEx(const QString& id, const QString& roleName, bool includeChildModel) const
{
    return valueOf(FindItem(id, includeChildModel), roleName);
}

// ---- page ----------------------------------------------------------------------

int PagingModelImp::page() const
{
    return m_page;
}

int PagingModelImp::totalPage() const
{
    return m_totalPage;
}

void PagingModelImp::setPage(int page)
{
    if (page == m_page || page < 0 || m_numPerPage == 0 || page > LastPage())
        return;
    m_page = page;
    emit pageChanged(page);
    // Sent while the announced count is still the old page's: delegates refresh
    // their rows first, then the count is adjusted. Views rely on this order.
    emitWholePageChanged();
    adjustAnnouncedRowCount();
}

void PagingModelImp::emitWholePageChanged()
{
    // Rows 0..count-1 of the page, row 0 alone when the page is empty.
    const int count = rowCount();
    emit dataChanged(createIndex(0, 0), createIndex(count > 0 ? count - 1 : 0, 0));
}

void PagingModelImp::adjustAnnouncedRowCount()
{
    const int before = m_lastRowCount;
    const int now = rowCount();
    // The rows already changed (the page or the source moved); the notice only
    // brings the announced count in line.
    if (now > before) {
        RowNotices::announceInsertedAfterChange(*this, before, now - 1);
        emit rowCountChanged();
    } else if (now < before) {
        RowNotices::announceRemovedAfterChange(*this, now, before - 1);
        emit rowCountChanged();
    }
    m_lastRowCount = rowCount();
}

// ---- source handlers -------------------------------------------------------------

void PagingModelImp::SourceModelCountChangedHandler(const QModelIndex& /*parent*/, int start, int /*end*/)
{
    setTotalPage(CalcTotalPage());
    if (m_page > LastPage())
        setPage(LastPage());
    // A change that begins on a later page only moves the total.
    if (unsigned(start) / m_numPerPage <= unsigned(m_page)) {
        emitWholePageChanged();
        adjustAnnouncedRowCount();
    }
}

void PagingModelImp::SourceModelDataChangedHandler(const QModelIndex& topLeft, const QModelIndex& bottomRight)
{
    const qint64 top = topLeft.row();
    const qint64 bottom = bottomRight.row();
    if (top > bottom)
        return;
    // The changed rows that lie on the current page, as one in-page range.
    // Rows before 0 never belong to a page.
    const qint64 pageStart = qint64(m_numPerPage) * m_page;
    const qint64 pageEnd = pageStart + qint64(m_numPerPage) - 1;
    const qint64 first = qMax(qMax(top, pageStart), qint64(0));
    const qint64 last = qMin(bottom, pageEnd);
    if (first > last)
        return;
    emit dataChanged(createIndex(int(first - pageStart), 0), createIndex(int(last - pageStart), 0));
}

void PagingModelImp::SourceModelItemRemovedHandler(const QModelIndex& /*parent*/, int start, int /*end*/)
{
    // Not connected by the view itself; kept for hosts that connect it.
    setTotalPage(CalcTotalPage());
    if (m_page > LastPage())
        setPage(LastPage());
    m_lastRowCount = rowCount();
    if (unsigned(start) / m_numPerPage < unsigned(m_page)) {
        RowNotices::reset(*this);
        emit rowCountChanged();
    }
}
