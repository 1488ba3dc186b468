#pragma once

#include <QString>
#include <vector>

// What the about window and `vorkam_report --version` tell of the program: its version and the
// libraries it runs on, with the versions actually loaded and their licences.
namespace ProgramInfo {

struct Library {
    QString name;
    QString version;
    QString licence;
};

QString version();
QString licence();
std::vector<Library> libraries();
// The list as text, one library a line.
QString librariesText();

} // namespace ProgramInfo
