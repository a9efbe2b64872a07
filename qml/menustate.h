#pragma once

#include "state.h"

#include <QtCore/QStringList>
#include <QtCore/QVariantList>

namespace canbus::qml {

/// The box's menu or text screen as CanBusPlayer reports it. All items change together. docs/qml.md says
/// shape and range of each.
class MenuState : public State {
    Q_OBJECT
    Q_PROPERTY(QVariantList menu READ menu NOTIFY menuChanged)
    Q_PROPERTY(bool minus READ minus NOTIFY minusChanged)
    Q_PROPERTY(bool plus READ plus NOTIFY plusChanged)
    Q_PROPERTY(QStringList texts READ texts NOTIFY textsChanged)

public:
    explicit MenuState(QObject *parent = nullptr);

    QVariantList menu() const { return m_menu; }
    bool minus() const { return m_minus; }
    bool plus() const { return m_plus; }
    QStringList texts() const { return m_texts; }

Q_SIGNALS:
    void menuChanged();
    void minusChanged();
    void plusChanged();
    void textsChanged();

private:
    void take(const QList<int> &menu, bool minus, bool plus, const QStringList &texts);

    QVariantList m_menu;
    bool m_minus = false;
    bool m_plus = false;
    QStringList m_texts;
};

} // namespace canbus::qml
