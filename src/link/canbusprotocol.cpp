#include "canbusprotocol.h"

namespace canbus {

CanbusProtocol::CanbusProtocol(QObject *parent)
    : QObject(parent)
{
}

CanbusProtocol::~CanbusProtocol() = default;

LinkHealth *CanbusProtocol::linkHealth() const
{
    return nullptr;
}

} // namespace canbus
