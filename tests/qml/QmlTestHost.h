#ifndef TESTS_QMLTESTHOST_H
#define TESTS_QMLTESTHOST_H

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QStringList>
#include <QtCore/QVariant>

class QQmlEngine;

/*!
 * The C++ side of the QML tests, reachable from every TestCase as the context
 * property `host`. It plays the host application: it makes models through the
 * entry point and fills them from C++ (insertion is not callable from QML).
 */
class QmlTestHost : public QObject
{
    Q_OBJECT
public:
    explicit QmlTestHost(QObject* parent = nullptr);
    ~QmlTestHost() override;

    //! A model made by CreateXOLATreeModel with the default role names plus
    //! valueRole (261), groupRole (262) and textRole (263). Owned by the host.
    Q_INVOKABLE QObject* createModel(int flags = 0);
    //! As createModel, with a match function for user-defined filter views: it
    //! keeps items whose valueRole is at least the rule value's "min".
    Q_INVOKABLE QObject* createModelWithMinimumMatch(int flags = 0);
    //! Appends an item (id, name, valueRole value) from C++.
    Q_INVOKABLE bool append(QObject* model, const QString& id, const QString& name, const QVariant& value = QVariant());
    //! Appends one item per id (name "name-<id>") with AppendItemsList.
    Q_INVOKABLE bool appendMany(QObject* model, const QStringList& ids);
    //! Appends an item whose child model is childModel.
    Q_INVOKABLE bool appendWithChild(QObject* model, const QString& id, const QString& name, QObject* childModel);
    Q_INVOKABLE bool prepend(QObject* model, const QString& id, const QString& name, const QVariant& value = QVariant());
    //! Sets an item's valueRole / groupRole / textRole / name from C++.
    Q_INVOKABLE bool setValue(QObject* model, const QString& id, const QVariant& value);
    Q_INVOKABLE bool setGroup(QObject* model, const QString& id, const QVariant& value);
    Q_INVOKABLE bool setText(QObject* model, const QString& id, const QVariant& value);
    Q_INVOKABLE bool setName(QObject* model, const QString& id, const QString& name);
    Q_INVOKABLE bool removeOne(QObject* model, const QString& id);
    Q_INVOKABLE void removeAll(QObject* model);
    //! Directory of the test data files (comparison functions...).
    Q_INVOKABLE QString dataDir() const;
    //! The sort flag / option bits of a model, read from C++.
    Q_INVOKABLE int sortFlag(QObject* model) const;
    Q_INVOKABLE int objectOwnership(QObject* object) const;

    void setEngine(QQmlEngine* engine) { m_engine = engine; }

private:
    //! Remembers an item handed to a model: the models give some back (removal
    //! by id list, options that keep removed items), and those are the host's.
    template <typename Item>
    Item* handedOver(Item* item)
    {
        m_items << item;
        return item;
    }

    QQmlEngine* m_engine = nullptr;
    QList<QPointer<QObject>> m_items;
};

#endif // TESTS_QMLTESTHOST_H
