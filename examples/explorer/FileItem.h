#ifndef FILEITEM_H
#define FILEITEM_H

#include <XOLATreeItem.h>

#include <QtCore/QByteArray>
#include <QtCore/QDateTime>
#include <QtCore/QFileInfo>
#include <QtCore/QHash>

/*!
 * One file or directory of the scanned tree.
 *
 * The base item knows the id (the path below the scanned root), the name and
 * the child model (a directory's entries). Everything else a file has is
 * answered here as extra roles numbered after XOLATreeItem::LastRole. Both
 * getData() forms are overridden: the models read rows, sort keys and group
 * keys by role number, while filter rules and get() ask by role name.
 */
class FileItem : public XOLATreeItem
{
    Q_OBJECT

public:
    enum FileRoles {
        SizeRole = XOLATreeItem::LastRole + 1, // 261 bytes; for a directory, all files below it
        SuffixRole,                            // 262 "h", "cpp"; empty for directories
        ModifiedRole,                          // 263 last modification time
        IsDirRole,                             // 264
        PathRole,                              // 265 path below the scanned root
        DirRole                                // 266 directory holding the entry, "." at the top
    };
    Q_ENUM(FileRoles)

    FileItem(const QFileInfo& info, const QString& path, qint64 size, QObject* childModel = nullptr);

    //! The role names every model of the explorer is built with: the three
    //! fixed ones (a non-empty table replaces the defaults) and ours.
    static const QHash<int, QByteArray>& roleNames();

    QVariant getData(int role) const override;
    QVariant getData(const QString& roleName) const override;

private:
    qint64 m_size;
    QString m_suffix;
    QDateTime m_modified;
    bool m_isDir;
    QString m_path;
    QString m_dir;
};

#endif // FILEITEM_H
