#pragma once

namespace canbus::qml {

/// Registers the module's singletons, version 1.0: the player and the groups as they are, and the state
/// objects. For the plugin; a program that links the state objects itself may call it instead, before it
/// loads QML.
/// @param uri  "CanBus"
void registerTypes(const char *uri);

} // namespace canbus::qml
