#pragma once

#include "backup/VerifiedCopy.h"

#include <QString>

// Takes a copy from the backup stick back into use: it becomes the file of its name in the data
// folder (~/Documents/Vorkam) and the books named by the Database setting. The copy is brought
// over and checked first; a copy that is not sound books of Vorkam never replaces anything. A
// copy in the old Jet format is converted first, when the user agrees, as the start-up converts
// such books.
namespace StickRestore {

// Where `copy` is restored: the data folder and the copy's file name.
QString targetOf(const QString& copy);

enum class Outcome {
    Restored, // the caller ends the program
    Cancelled, // the user said no; nothing changed
    Failed, // told to the user; nothing changed
};

Outcome restore(const QString& copy, const VerifiedCopy::Progress& progress = {});

} // namespace StickRestore
