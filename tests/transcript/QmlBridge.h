#ifndef TRANSCRIPT_QMLBRIDGE_H
#define TRANSCRIPT_QMLBRIDGE_H

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QVariant>

class Recorder;

/*!
 * The transcript as the QML document sees it (context property `log`): JS
 * writes its results as text it made itself, so that what reaches the
 * transcript never passes through a JS-to-C++ conversion of the Qt at hand.
 */
class QmlBridge : public QObject
{
    Q_OBJECT
public:
    QmlBridge(Recorder* recorder, const QString& dataDir, const QString& compareDir, QObject* parent = nullptr);

    //! One line of JS results, in the notice sequence of the running operation.
    Q_INVOKABLE void line(const QString& text);
    //! Records a view made from JS under name, like the C++ ones.
    Q_INVOKABLE void watch(const QString& name, QObject* view);
    //! The transcript's name of an object, or an empty text when value holds none.
    Q_INVOKABLE QString objectLabel(const QVariant& value) const;
    //! A problem that goes to stderr only (its text differs between Qt versions).
    Q_INVOKABLE void problem(const QString& text) const;
    //! Absolute paths of comparison files.
    Q_INVOKABLE QString dataFile(const QString& name) const;
    Q_INVOKABLE QString compareFile(const QString& name) const;

private:
    Recorder* m_recorder;
    QString m_dataDir;
    QString m_compareDir;
};

#endif // TRANSCRIPT_QMLBRIDGE_H
