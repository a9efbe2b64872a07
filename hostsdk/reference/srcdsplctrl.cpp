#include <srcdsplctrl.h>

SrcDsplCtrl::SrcDsplCtrl(QObject *parent)
    : QObject(parent)
{
    qRegisterMetaType<C::DSPLState>();
    qRegisterMetaType<C::SourceState>();
}

C::DSPLState SrcDsplCtrl::currentDspl() const
{
    return m_display;
}

void SrcDsplCtrl::setCurrentDspl(C::DSPLState display)
{
    m_display = display;
    Q_EMIT dsplAndSrcChanged(display, C::SRC_None, QByteArray());
}
