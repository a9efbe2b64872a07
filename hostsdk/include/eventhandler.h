#pragma once

#include <QtCore/QObject>

#include <displaystate.h>

class SrcDsplCtrl;

/// Takes the events by which the parts of the head unit ask its user interface for something.
///
/// A process-wide singleton that is never deleted by its users.
///
/// @thread{The host's main thread, to which it belongs.}
/// @emitted{The host's main thread.}
class EventHandler : public QObject {
    Q_OBJECT

public:
    /// The one handler, built on first use and destroyed at process exit.
    /// @return never null
    static EventHandler *instance();

    /// Takes an event.
    ///
    /// The reference host emits eventReceived() for each, whatever its number, and then acts on two of them:
    /// - 35 shows C::DSPL_BoxCamera and remembers the display that was shown before. While that view is shown
    ///   already, nothing changes and what is remembered stays, so that 35 twice is 35 once.
    /// - 36 returns from C::DSPL_BoxCamera to the remembered display, or to C::DSPL_Home if the view was not
    ///   entered by 35. While another display is shown, nothing changes: somebody has left the view already.
    /// @param event  the event's number
    void onEvent(int event);

    /// The controller of source and display.
    /// @return never null; it belongs to this handler
    SrcDsplCtrl *srcDsplCtrl() const;

Q_SIGNALS:
    /// An event has arrived, and was not acted upon yet. Added by the reference host.
    /// @param event  the event's number
    void eventReceived(int event);

private:
    EventHandler();

    void enterBoxCamera();
    void leaveBoxCamera();

    SrcDsplCtrl *m_srcDsplCtrl;
    C::DSPLState m_beforeBoxCamera = C::DSPL_Home;
};
