#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QObject>

#include <displaystate.h>

/// Knows which display the head unit shows and which source it plays, and tells when that changes.
///
/// The one that counts is held by the event handler: EventHandler::srcDsplCtrl().
///
/// @thread{The host's main thread, on which it lives.}
/// @emitted{The host's main thread.}
class SrcDsplCtrl : public QObject {
    Q_OBJECT

public:
    /// Shows C::DSPL_Home. It registers both enumerations as meta-types, so that the signal can be queued.
    /// @param parent  its owner, or null
    explicit SrcDsplCtrl(QObject *parent = nullptr);

    /// The display that is shown now.
    /// @return also a number without a name
    C::DSPLState currentDspl() const;

public Q_SLOTS:
    /// Plays a change of the screen. Added by the reference host.
    ///
    /// @param display  stored as it came, also when it has no name
    /// Emits dsplAndSrcChanged() on every call, also when the display stays the same: a host repeats it when
    /// only the source changes.
    void setCurrentDspl(C::DSPLState display);

Q_SIGNALS:
    /// The display or the source changed; currentDspl() is the new display already.
    /// @param display  the display that is shown now
    /// @param source  the source that plays now; always C::SRC_None from the reference host
    /// @param detail  the host's own detail; always empty from the reference host
    void dsplAndSrcChanged(C::DSPLState display, C::SourceState source, QByteArray detail);

private:
    C::DSPLState m_display = C::DSPL_Home;
};
