#pragma once

#include <QString>
#include <functional>

// New books for an association: a copy of one of the model databases in the program's
// mallit/ folder, or of the books in use, made in the data folder and taken into use at the
// next start.
namespace DatabaseCreation {

enum class Source { Yhdistys, AOY, Metalli, Lions, Nykyinen };

// What each creation command tells before it asks for the name.
QString explanation(Source source);
// The model's file in mallit/; empty for a copy of the books in use.
QString modelFile(Source source);

// The name the user typed, made into the name of the new file: blanks around it and a typed
// ".mdb" dropped, cut to eight characters. A name that is empty or would not stay a plain file
// name in the data folder gives `message` instead.
struct Name {
    QString name;
    QString message;
};
Name checkName(const QString& typed);

// The creation command: the explanation, the name question, the copy, the new Database
// setting, the two messages and the end of the program. `beforeCopy` runs right before the
// copy (the main window closes its working windows there); when it returns false nothing is
// made. Returns true when the new books were made and the program end was requested.
bool run(Source source, const std::function<bool()>& beforeCopy = {});

} // namespace DatabaseCreation
