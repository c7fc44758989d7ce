#ifndef TESTS_FLATPROXY_H
#define TESTS_FLATPROXY_H

#include <QtCore/QHash>
#include <QtCore/QIdentityProxyModel>

//! How Qt's model tester is shown the library's models: an identity proxy whose
//! rows have no children (the models' rowCount() ignores its parent, so the
//! tester would otherwise walk an endless tree) and whose display text is the
//! row's id (so that the tester compares real neighbours of changed rows).
class FlatProxy : public QIdentityProxyModel
{
public:
    explicit FlatProxy(QAbstractItemModel* source)
    {
        setSourceModel(source);
        const QHash<int, QByteArray> names = source->roleNames();
        for (auto it = names.constBegin(); it != names.constEnd(); ++it) {
            if (it.value() == "idRole" && (m_idRole == 0 || it.key() < m_idRole))
                m_idRole = it.key();
        }
        if (m_idRole == 0)
            m_idRole = Qt::UserRole + 1;
    }
    int rowCount(const QModelIndex& parent = QModelIndex()) const override
    {
        return parent.isValid() ? 0 : QIdentityProxyModel::rowCount(parent);
    }
    bool hasChildren(const QModelIndex& parent = QModelIndex()) const override
    {
        return parent.isValid() ? false : QIdentityProxyModel::hasChildren(parent);
    }
    QModelIndex index(int row, int column, const QModelIndex& parent = QModelIndex()) const override
    {
        return parent.isValid() ? QModelIndex() : QIdentityProxyModel::index(row, column, parent);
    }
    QVariant data(const QModelIndex& index, int role) const override
    {
        return QIdentityProxyModel::data(index, role == Qt::DisplayRole ? m_idRole : role);
    }

private:
    int m_idRole = 0;
};

#endif // TESTS_FLATPROXY_H
