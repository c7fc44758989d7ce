#include "Recorder.h"

#include "Canonical.h"
#include "XOLATreeItem.h"
#include "XOLATreeModel.h"

#include <algorithm>

namespace {

QString rows(const char* name, int first, int last)
{
    return QStringLiteral("%1(%2,%3)").arg(QLatin1String(name)).arg(first).arg(last);
}

//! The child model of a row's item, read without asking a filter view for
//! its child model role (which makes a new view at every read).
QObject* itemChild(const QAbstractItemModel* model, const QModelIndex& index)
{
    if (model->inherits("FilterModelImp")) {
        auto* view = qobject_cast<const IXOLATreeModel*>(model);
        auto* item = view ? qobject_cast<XOLATreeItem*>(view->FindItem(index.row())) : nullptr;
        return item ? item->childModel() : nullptr;
    }
    const QVariant child = model->data(index, XOLATreeItem::ChildModelRole);
    return child.userType() == QMetaType::QObjectStar ? *static_cast<QObject* const*>(child.constData()) : nullptr;
}

// Properties a model or view may have; each is written when present.
const char* const kProperties[] = {"count", "page", "totalPage", "firstPartialModelRow"};

//! True when a value map holds the three fixed fields and nothing else, each
//! reading exactly as the row's own id, name and child model.
bool isPlainMap(const QAbstractItemModel* model, const QModelIndex& index, const QVariant& value)
{
    if (value.userType() != QMetaType::QVariantMap)
        return false;
    const QVariantMap map = value.toMap();
    if (map.size() != 3)
        return false;
    const QVariant id = map.value(QStringLiteral("idRole"));
    const QVariant name = map.value(QStringLiteral("nameRole"));
    const QVariant child = map.value(QStringLiteral("childModelRole"));
    return id.userType() == QMetaType::QString && name.userType() == QMetaType::QString
        && child.userType() == QMetaType::QObjectStar
        && Canonical::value(id) == Canonical::value(model->data(index, XOLATreeItem::IdRole))
        && Canonical::value(name) == Canonical::value(model->data(index, XOLATreeItem::NameRole))
        && *static_cast<QObject* const*>(child.constData()) == itemChild(model, index);
}

} // namespace

Recorder::Recorder(QObject* parent)
    : QObject(parent)
{
    Canonical::setLabeler([this](const QObject* object) { return label(object); });
}

Recorder::~Recorder()
{
    Canonical::setLabeler(nullptr);
}

QString Recorder::nameOf(const QObject* object) const
{
    if (!object)
        return QString();
    for (const Watched& w : m_watched) {
        if (w.address == object && w.object)
            return w.name;
    }
    return QString();
}

QString Recorder::label(const QObject* object) const
{
    if (!object)
        return QStringLiteral("none");
    const QString name = nameOf(object);
    if (!name.isEmpty())
        return name;
    if (auto* item = qobject_cast<const XOLATreeItem*>(object))
        return QStringLiteral("item(") + Canonical::quoted(item->id()) + QLatin1Char(')');
    // Never the address: an object the transcript does not know is named by its class.
    return QString::fromLatin1(object->metaObject()->className()) + QStringLiteral("(unnamed)");
}

void Recorder::note(const QString& text)
{
    m_notices << text;
}

QStringList Recorder::takeNotices()
{
    QStringList result = m_notices;
    m_notices.clear();
    return result;
}

void Recorder::fromSender(const QString& text)
{
    const QObject* source = sender();
    if (auto* item = qobject_cast<const XOLATreeItem*>(source)) {
        note(QStringLiteral("[item ") + Canonical::quoted(item->id()) + QStringLiteral("] ") + text);
        return;
    }
    note(QLatin1Char('[') + label(source) + QStringLiteral("] ") + text);
}

void Recorder::connectIfPresent(QObject* object, const char* signal, const char* slot)
{
    // signal and slot come from SIGNAL()/SLOT(): the first character is the code.
    const QByteArray normalized = QMetaObject::normalizedSignature(signal + 1);
    if (object->metaObject()->indexOfSignal(normalized.constData()) >= 0)
        connect(object, signal, this, slot, Qt::DirectConnection);
}

void Recorder::watch(QObject* object, const QString& name)
{
    if (!object || !nameOf(object).isEmpty())
        return;
    Watched w;
    w.object = object;
    w.address = object;
    w.name = name;
    m_watched << w;

    if (auto* model = qobject_cast<QAbstractItemModel*>(object)) {
        using M = QAbstractItemModel;
        const QString tag = QLatin1Char('[') + name + QStringLiteral("] ");
        connect(model, &M::rowsAboutToBeInserted, this, [this, tag](const QModelIndex&, int f, int l) { note(tag + rows("rowsAboutToBeInserted", f, l)); }, Qt::DirectConnection);
        connect(model, &M::rowsInserted, this, [this, tag](const QModelIndex&, int f, int l) { note(tag + rows("rowsInserted", f, l)); }, Qt::DirectConnection);
        connect(model, &M::rowsAboutToBeRemoved, this, [this, tag](const QModelIndex&, int f, int l) { note(tag + rows("rowsAboutToBeRemoved", f, l)); }, Qt::DirectConnection);
        connect(model, &M::rowsRemoved, this, [this, tag](const QModelIndex&, int f, int l) { note(tag + rows("rowsRemoved", f, l)); }, Qt::DirectConnection);
        connect(model, &M::rowsAboutToBeMoved, this, [this, tag](const QModelIndex&, int f, int l, const QModelIndex&, int d) {
            note(tag + QStringLiteral("rowsAboutToBeMoved(%1,%2,%3)").arg(f).arg(l).arg(d)); }, Qt::DirectConnection);
        connect(model, &M::rowsMoved, this, [this, tag](const QModelIndex&, int f, int l, const QModelIndex&, int d) {
            note(tag + QStringLiteral("rowsMoved(%1,%2,%3)").arg(f).arg(l).arg(d)); }, Qt::DirectConnection);
        connect(model, &M::modelAboutToBeReset, this, [this, tag]() { note(tag + QStringLiteral("modelAboutToBeReset()")); }, Qt::DirectConnection);
        connect(model, &M::modelReset, this, [this, tag]() { note(tag + QStringLiteral("modelReset()")); }, Qt::DirectConnection);
        connect(model, &M::layoutAboutToBeChanged, this, [this, tag]() { note(tag + QStringLiteral("layoutAboutToBeChanged()")); }, Qt::DirectConnection);
        connect(model, &M::layoutChanged, this, [this, tag]() { note(tag + QStringLiteral("layoutChanged()")); }, Qt::DirectConnection);
        connect(model, &M::dataChanged, this, [this, tag](const QModelIndex& tl, const QModelIndex& br, const QVector<int>& roles) {
            QString text = QStringLiteral("dataChanged(%1,%2").arg(tl.row()).arg(br.row());
            if (!roles.isEmpty()) {
                QStringList r;
                for (int role : roles)
                    r << QString::number(role);
                text += QStringLiteral(",[%1]").arg(r.join(QLatin1Char(',')));
            }
            note(tag + text + QLatin1Char(')'));
        }, Qt::DirectConnection);
    }
    connectIfPresent(object, SIGNAL(rowCountChanged()), SLOT(onRowCountChanged()));
    connectIfPresent(object, SIGNAL(firstPartialModelRowChanged()), SLOT(onFirstPartialModelRowChanged()));
    connectIfPresent(object, SIGNAL(itemsRemoved(QStringList)), SLOT(onItemsRemoved(QStringList)));
    connectIfPresent(object, SIGNAL(allItemRemoved()), SLOT(onAllItemRemoved()));
    connectIfPresent(object, SIGNAL(filterModelChanged()), SLOT(onFilterModelChanged()));
    connectIfPresent(object, SIGNAL(pageChanged(int)), SLOT(onPageChanged(int)));
    connectIfPresent(object, SIGNAL(totalPageChanged(int)), SLOT(onTotalPageChanged(int)));
}

void Recorder::watchItem(QObject* item)
{
    if (!item)
        return;
    connectIfPresent(item, SIGNAL(valueChanged()), SLOT(onValueChanged()));
    connectIfPresent(item, SIGNAL(childModelValueChanged()), SLOT(onChildModelValueChanged()));
}

void Recorder::onRowCountChanged() { fromSender(QStringLiteral("rowCountChanged()")); }
void Recorder::onFirstPartialModelRowChanged() { fromSender(QStringLiteral("firstPartialModelRowChanged()")); }
void Recorder::onItemsRemoved(const QStringList& ids)
{
    QStringList quoted;
    for (const QString& id : ids)
        quoted << Canonical::quoted(id);
    fromSender(QStringLiteral("itemsRemoved(%1)").arg(quoted.join(QLatin1Char(','))));
}
void Recorder::onAllItemRemoved() { fromSender(QStringLiteral("allItemRemoved()")); }
void Recorder::onFilterModelChanged() { fromSender(QStringLiteral("filterModelChanged()")); }
void Recorder::onPageChanged(int page) { fromSender(QStringLiteral("pageChanged(%1)").arg(page)); }
void Recorder::onTotalPageChanged(int totalPage) { fromSender(QStringLiteral("totalPageChanged(%1)").arg(totalPage)); }
void Recorder::onValueChanged() { fromSender(QStringLiteral("valueChanged()")); }
void Recorder::onChildModelValueChanged() { fromSender(QStringLiteral("childModelValueChanged()")); }

void Recorder::discover(const QVariant& value, const QString& name)
{
    if (value.userType() != QMetaType::QObjectStar)
        return;
    QObject* object = *static_cast<QObject* const*>(value.constData());
    if (qobject_cast<QAbstractItemModel*>(object) && nameOf(object).isEmpty())
        watch(object, name);
}

QStringList Recorder::rowsOf(QAbstractItemModel* model, const QString& name)
{
    QStringList lines;
    QStringList props;
    props << QStringLiteral("rows=%1").arg(model->rowCount());
    for (const char* property : kProperties) {
        if (model->metaObject()->indexOfProperty(property) >= 0)
            props << QLatin1String(property) + QLatin1Char('=') + Canonical::value(model->property(property));
    }
    if (auto* tree = qobject_cast<XOLATreeModel*>(model)) {
        props << QStringLiteral("sortFlag=%1").arg(tree->sortFlag());
        if (!tree->sortRules().isEmpty())
            props << QStringLiteral("sortRules=") + Canonical::value(tree->sortRules());
    }
    lines << QLatin1Char('[') + name + QStringLiteral("] ") + props.join(QLatin1Char(' '));

    // Role numbers in order; the whole value map (260) always, also where the
    // role table does not name it.
    const QHash<int, QByteArray> names = model->roleNames();
    QList<int> roles = names.keys();
    if (!roles.contains(XOLATreeItem::JsonValueRole))
        roles << XOLATreeItem::JsonValueRole;
    std::sort(roles.begin(), roles.end());
    // A filter view answers its child model role with a new view at every
    // read; the transcript reads the item's own child model instead.
    auto* filterView = model->inherits("FilterModelImp") ? qobject_cast<IXOLATreeModel*>(model) : nullptr;

    for (int row = 0; row < model->rowCount(); ++row) {
        const QModelIndex index = model->index(row, 0);
        QStringList cells;
        for (int role : roles) {
            QVariant value;
            if (role == XOLATreeItem::ChildModelRole && filterView) {
                auto* item = qobject_cast<XOLATreeItem*>(filterView->FindItem(row));
                value = item ? QVariant::fromValue<QObject*>(item->childModel()) : QVariant();
            } else {
                value = model->data(index, role);
            }
            if (role == XOLATreeItem::ChildModelRole)
                discover(value, name + QLatin1Char('/') + model->data(index, XOLATreeItem::IdRole).toString());
            QString roleName = QString::fromLatin1(names.value(role));
            if (roleName.isEmpty())
                roleName = role == XOLATreeItem::JsonValueRole ? QStringLiteral("map") : QString::number(role);
            if (role == XOLATreeItem::JsonValueRole && isPlainMap(model, index, value)) {
                // Most maps only repeat the row's id, name and child model: said
                // in one word, which stands for exactly that.
                cells << roleName + QStringLiteral("=fixed");
                continue;
            }
            cells << roleName + QLatin1Char('=') + Canonical::value(value);
        }
        lines << QStringLiteral("  %1: ").arg(row) + cells.join(QStringLiteral(" | "));
    }
    return lines;
}

QStringList Recorder::dump()
{
    QStringList lines;
    // Indexes, not iterators: writing a group view discovers its member models,
    // which join the end of the list and are written in the same pass.
    for (int i = 0; i < m_watched.size(); ++i) {
        QPointer<QObject> object = m_watched.at(i).object;
        const QString name = m_watched.at(i).name;
        if (!object) {
            if (!m_watched.at(i).reportedGone) {
                lines << QLatin1Char('[') + name + QStringLiteral("] gone");
                m_watched[i].reportedGone = true;
            }
            continue;
        }
        auto* model = qobject_cast<QAbstractItemModel*>(object.data());
        if (!model)
            continue;
        const QStringList text = rowsOf(model, name);
        const QString joined = text.join(QLatin1Char('\n'));
        if (joined == m_watched.at(i).lastDump) {
            lines << QLatin1Char('[') + name + QStringLiteral("] unchanged (%1 rows)").arg(model->rowCount());
            continue;
        }
        m_watched[i].lastDump = joined;
        lines << text;
    }
    return lines;
}

QStringList Recorder::idsOf(const QObject* object)
{
    QStringList ids;
    if (auto* model = qobject_cast<const IXOLATreeModel*>(object)) {
        for (int row = 0; row < model->rowCount(); ++row)
            ids << model->FindItemID(row);
    } else if (auto* list = qobject_cast<const QAbstractItemModel*>(object)) {
        for (int row = 0; row < list->rowCount(); ++row)
            ids << list->data(list->index(row, 0), XOLATreeItem::IdRole).toString();
    }
    return ids;
}
