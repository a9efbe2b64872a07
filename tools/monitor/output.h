#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace canbus::monitor {

/// Writes lines to a descriptor, each at once. Waits for a slow reader, but not beyond the moment at which
/// the program is told to stop.
class Output {
public:
    enum class State {
        Open,
        Stopped,    ///< told to stop while the reader was slow
        ReaderGone, ///< nobody reads any more: not worth a message
        Failed      ///< see error()
    };

    /// @param stopDescriptor  readable once the program is told to stop; -1: there is none
    Output(int descriptor, int stopDescriptor);

    /// Writes the text and a line end. Writes nothing once the state is not Open.
    /// @return the state then
    State writeLine(const QString &line);

    State state() const { return m_state; }

    /// Why writing has failed.
    QString error() const;

private:
    bool waitUntilWritable();
    void writeSome(QByteArray &bytes);

    int m_descriptor;
    int m_stopDescriptor;
    State m_state = State::Open;
    int m_errorNumber = 0;
};

/// Says on standard error why the output has failed, if it has.
/// @return the exit status of a program that ends in this state of its output
int exitStatus(const Output &output);

} // namespace canbus::monitor
