#pragma once

#include "boxsim/fields/fields.h"

namespace boxsim {

/// The longest title, and all texts of a list together with the zeros that close them, in bytes of UTF-8: a
/// frame of which every byte is escaped still stays below the 2048 bytes at which the head unit gives up.
constexpr int kMostTextBytes = 1000;

/// What a field takes, or each of its entries: "a whole number from 0 to 255".
QString wantedBy(const Field &field);

/// Checks the value of one entry of a field, or of a field that has one value.
/// @param name  what the error calls it
/// @param value  gets what was given in the form that Assignment has
bool checkEntry(const Field &field, const QString &name, const QVariant &given, QVariant *value,
                QString *error);

/// Checks the list that sets all entries of a field with several.
bool checkAllEntries(const Field &field, const QVariant &given, QVariant *value, QString *error);

/// What is typed for a field, as it would come from JSON: what is no number where one is wanted stays a text.
/// @param whole  all entries of a field with several
QVariant typedValue(const Field &field, bool whole, const QString &text);

/// A value as it can be typed: the other way round.
QString textOfValue(const Field &field, const QVariant &value);

} // namespace boxsim
