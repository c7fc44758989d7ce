#ifndef XOLATREEITEM_H
#define XOLATREEITEM_H

#include "XOLATreeModelGlobal.h"

#include <QtCore/QMap>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QVariant>

#include <memory>

class XOLATreeItemPrivate;

/*!
 * One row of an XOLATreeModel: an id, a name, an optional child model (which
 * turns the list into a tree) and a free map of values.
 *
 * The value map always mirrors the three fixed fields under "idRole",
 * "nameRole" and "childModelRole". Hosts that need more roles subclass the
 * item and override both getData() forms.
 *
 * Items have no QObject parent and CppOwnership, so a QML engine never
 * collects an item it has been handed; the model that lists an item owns it.
 */
class XOLATREEMODEL_EXPORT XOLATreeItem : public QObject
{
    Q_OBJECT

public:
    enum Roles {
        IdRole = Qt::UserRole + 1, // 257
        NameRole,                  // 258
        ChildModelRole,            // 259
        JsonValueRole,             // 260
        LastRole = JsonValueRole   // hosts number their own roles after this one
    };
    Q_ENUM(Roles)

    //! The third argument is the child model, not a QObject parent.
    XOLATreeItem(const QString& id, const QString& name, QObject* childModel = nullptr);
    ~XOLATreeItem() override;

    Q_INVOKABLE virtual QVariant getData(int role) const;
    Q_INVOKABLE virtual QVariant getData(const QString& roleName) const;
    Q_INVOKABLE virtual void setData(int role, QVariant value);
    Q_INVOKABLE virtual void setData(const QString& roleName, QVariant value);

    void SetID(const QString& id);
    void SetName(const QString& name);
    void SetChildModel(QObject* childModel);
    void SetJsonValue(const QMap<QString, QVariant>& value);

    QString id() const;
    QString name() const;
    QObject* childModel() const;
    //! The value map; its "childModelRole" entry never names a deleted model.
    QMap<QString, QVariant> jsonValue() const;

signals:
    void valueChanged();
    void childModelValueChanged();

private:
    Q_DISABLE_COPY(XOLATreeItem)
    // Everything the item holds lives behind this pointer, so that the layout
    // hosts compile against stays the same when the item's state changes.
    const std::unique_ptr<XOLATreeItemPrivate> d_ptr;
};

#endif // XOLATREEITEM_H
