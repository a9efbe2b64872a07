#include "canbusprotocol.h"

namespace canbus {

CanbusProtocol::CanbusProtocol(QObject *parent)
    : QObject(parent)
{
}

CanbusProtocol::~CanbusProtocol() = default;

} // namespace canbus
