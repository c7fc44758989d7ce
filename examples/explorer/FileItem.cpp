#include "FileItem.h"

namespace {
// Never a null string: rules and sort keys treat a null value as "no value"
// and skip it, while a file without a suffix should sort and match as "".
QString suffixOf(const QFileInfo& info)
{
    const QString suffix = info.isDir() ? QString() : info.suffix();
    return suffix.isEmpty() ? QStringLiteral("") : suffix;
}
} // namespace

FileItem::FileItem(const QFileInfo& info, const QString& path, qint64 size, QObject* childModel)
    : XOLATreeItem(path, info.fileName(), childModel)
    , m_size(size)
    , m_suffix(suffixOf(info))
    , m_modified(info.lastModified())
    , m_isDir(info.isDir())
    , m_path(path)
    , m_dir(path.contains(QLatin1Char('/')) ? path.section(QLatin1Char('/'), 0, -2) : QStringLiteral("."))
{
}

const QHash<int, QByteArray>& FileItem::roleNames()
{
    static const QHash<int, QByteArray> names{
        {IdRole, "idRole"},    {NameRole, "nameRole"}, {ChildModelRole, "childModelRole"},
        {SizeRole, "size"},    {SuffixRole, "suffix"}, {ModifiedRole, "modified"},
        {IsDirRole, "isDir"},  {PathRole, "path"},     {DirRole, "dir"},
    };
    return names;
}

QVariant FileItem::getData(int role) const
{
    switch (role) {
    case SizeRole: return m_size;
    case SuffixRole: return m_suffix;
    case ModifiedRole: return m_modified;
    case IsDirRole: return m_isDir;
    case PathRole: return m_path;
    case DirRole: return m_dir;
    default: return XOLATreeItem::getData(role); // id, name, child model, value map
    }
}

QVariant FileItem::getData(const QString& roleName) const
{
    // The base resolves only the three fixed names; ours map to the numbers above.
    const int role = roleNames().key(roleName.toLatin1(), 0);
    return role > LastRole ? getData(role) : XOLATreeItem::getData(roleName);
}
