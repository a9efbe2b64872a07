#pragma once

#include "framesmodel.h"
#include "framesplitter.h"
#include "state.h"

#include <QtCore/QPointer>
#include <QtCore/QTimer>
#include <QtCore/QVariantMap>

namespace canbus {
class CanbusProtocol;
}

namespace canbus::qml {

/// The link: whether it is up, its figures, and on demand the last frames on the line.
///
/// Figures are looked at by a timer, which runs only while somebody listens to figuresChanged(). Frames are
/// heard of only while they are recorded, through queued connections.
class LinkState : public State {
    Q_OBJECT
    Q_PROPERTY(bool connected READ isConnected NOTIFY connectedChanged)
    Q_PROPERTY(QVariantMap figures READ figures NOTIFY figuresChanged)
    Q_PROPERTY(
        int refreshInterval READ refreshInterval WRITE setRefreshInterval NOTIFY refreshIntervalChanged)
    Q_PROPERTY(bool recordFrames READ isRecording WRITE setRecording NOTIFY recordFramesChanged)
    Q_PROPERTY(canbus::qml::FramesModel *frames READ frames CONSTANT)
    Q_PROPERTY(QString lastReceived READ lastReceived NOTIFY lastReceivedChanged)
    Q_PROPERTY(QString lastSent READ lastSent NOTIFY lastSentChanged)

public:
    static constexpr int kShortestRefreshMs = 50;

    explicit LinkState(QObject *parent = nullptr);

    bool isConnected() const { return !isStale(); }

    /// The figures as they are now, by their names; empty while there is no protocol that counts.
    QVariantMap figures() const;

    int refreshInterval() const { return m_refreshTimer.interval(); }
    /// @param milliseconds  taken as kShortestRefreshMs where it is less
    void setRefreshInterval(int milliseconds);

    bool isRecording() const { return m_isRecording; }
    void setRecording(bool isRecording);
    FramesModel *frames() { return &m_frames; }
    QString lastReceived() const { return m_lastReceived; }
    QString lastSent() const { return m_lastSent; }

    /// Forgets all recorded frames.
    Q_INVOKABLE void clearFrames();

    /// Whether the timer runs that looks at the figures, or for a protocol to listen to.
    bool isRefreshing() const { return m_refreshTimer.isActive(); }

Q_SIGNALS:
    void connectedChanged();
    void figuresChanged();
    void refreshIntervalChanged();
    void recordFramesChanged();
    void lastReceivedChanged();
    void lastSentChanged();

protected:
    void connectNotify(const QMetaMethod &signal) override;

private Q_SLOTS:
    void takeReceived(const QByteArray &block);
    void takeSent(const QByteArray &block);

private:
    void takeConnection();
    void refresh();
    void compareFigures();
    void listenToProtocol();
    void keep(FramesModel::Direction direction, const QByteArray &frame);

    QVariantMap m_seenFigures;
    QTimer m_refreshTimer;
    bool m_isRecording = false;
    QPointer<CanbusProtocol> m_heard; // whose writing is recorded
    FrameSplitter m_splitter;
    FramesModel m_frames;
    QString m_lastReceived;
    QString m_lastSent;
};

} // namespace canbus::qml
