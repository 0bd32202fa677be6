#pragma once

#include <string>

#include <QString>

// A path is bytes, and a text loses those that are not UTF-8. Here they become halves of pairs that
// no text has, so that pathOf(textOf(path)) is the path again, whatever is in it.
QString textOf(const std::string &path);
std::string pathOf(const QString &text);
