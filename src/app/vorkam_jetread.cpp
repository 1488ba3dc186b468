#include "core/JetReader.h"

// Reads an old Jet database for Vorkam in a process of its own, so that a damaged file can
// stop or hang only this program: vorkam_jetread FILE PAGES CODEPAGE [TABLE…], no table
// meaning every user table.
int main(int argc, char** argv) { JetReader::runHelper(argc, argv); }
