#pragma once

#include <QByteArray>
#include <QString>

namespace torvane {

/// What a desktop is told of a program that it starts at login.
struct AutostartProgram {
    QString id;   ///< names the entry, and the icon; by rule the name of the program's desktop entry
    QString name; ///< what users read
    QString path; ///< absolute, of the executable
};

/// A program's entry in the user's autostart folder, by freedesktop's "Desktop Application Autostart Specification" and
/// "Desktop Entry Specification". Clients disagree on every way of switching an entry off but one: there is none.
namespace AutostartEntry {

/// The file that is the program's entry: "autostart/<id>.desktop" below the user's configuration; empty for a user
/// without a home directory.
QString location(const QString& id);

/// The entry's text. Clients as they are run paths with blanks and with characters beyond ASCII; paths with
/// " $ % \ or ` are written by the rules, and some clients fail at them.
QByteArray text(const AutostartProgram& program);

/// Puts the entry in its place as a whole, replacing one that is there. Like removing it happens on the worker, in the
/// order asked for, and fails silently.
void write(const AutostartProgram& program);

/// Removes the entry, if there is one.
void remove(const QString& id);

} // namespace AutostartEntry

/// The path that starts this program anew: its own executable, or the image file that an AppImage runs from.
QString launchPath();

} // namespace torvane
