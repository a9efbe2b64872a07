#pragma once

#include <QtCore/QElapsedTimer>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QTimer>

namespace canbus::headunit {

/// The rest of the head unit, for QML: clock, reverse gear, which screen is shown, and the box's wish for
/// another one. Lives on the GUI thread.
///
/// The box's wishes are followed while nobody has touched the screen or a key for 20 seconds: a page does not
/// go away under a finger.
class Host : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString clock READ clock NOTIFY clockChanged)
    Q_PROPERTY(bool reverse READ isReverse NOTIFY reverseChanged)

public:
    static constexpr qint64 kQuietMs = 20000;

    /// @param quietMs  for so long nobody has touched anything when a wish of the box is followed
    explicit Host(qint64 quietMs = kQuietMs);

    QString clock() const { return m_clock; }
    bool isReverse() const { return m_isReverse; }

    /// Whether the box's wishes are followed at all; they are at first.
    void setFollowsBox(bool follows) { m_followsBox = follows; }

    /// Tells the rest of the head unit, and so the library, that a page is shown.
    /// @param page  one of pageNames()
    Q_INVOKABLE void showPage(const QString &page);

    /// Plays the reverse gear.
    Q_INVOKABLE void toggleReverse();
    void setReverse(bool engaged);

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    void clockChanged();
    void reverseChanged();
    /// The box wants a page to be shown.
    void pageWanted(const QString &name);

private:
    void takeReverse(bool engaged);
    void takeTouch(int touch);
    void readClock();

    QString m_clock;
    bool m_isReverse = false;
    bool m_followsBox = true;
    qint64 m_quietMs;
    QElapsedTimer m_sinceInput;
    QTimer m_clockTimer;
};

} // namespace canbus::headunit
