#pragma once

#include <QtCore/QString>

#include <optional>
#include <utility>

namespace canbus::monitor {

/// Why something could not be done: one line for the user, which names what was wrong and what would be
/// right.
struct Failure {
    QString text;
};

/// A value, or the reason why there is none.
template <class T>
class Outcome {
public:
    Outcome(T value)
        : m_value(std::move(value))
    {
    }
    Outcome(Failure failure)
        : m_error(std::move(failure.text))
    {
    }

    explicit operator bool() const { return m_value.has_value(); }
    const T &operator*() const { return *m_value; }
    const T *operator->() const { return &*m_value; }

    /// Empty where there is a value.
    QString error() const { return m_error; }
    Failure failure() const { return {m_error}; }

private:
    std::optional<T> m_value;
    QString m_error;
};

} // namespace canbus::monitor
