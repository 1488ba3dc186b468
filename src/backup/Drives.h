#pragma once

#include <QList>
#include <QString>

// One mounted volume as the memory-stick backup sees it.
struct Volume {
    QString mountPoint; // where its files are: the root of the copies
    QString label; // the file system's label ("KOPIOTIKKU")
    bool ready = false; // mounted and answering
    bool removable = false; // the kernel knows its disk as one that can be unplugged
    bool readOnly = false; // mounted for reading only (a write-protect switch, for one)
    qint64 freeBytes = 0; // what the current user may still write
};

// The computer's mounted volumes. The program uses the system's own list; tests install folders
// that pretend to be sticks.
class Drives {
public:
    virtual ~Drives() = default;

    // False when this computer cannot tell removable volumes from fixed ones.
    virtual bool supported() const = 0;
    // Every mounted volume, in an order that does not change from one call to the next.
    virtual QList<Volume> volumes() const = 0;

    static Drives& instance();
    // Does not take ownership; nullptr restores the system's list.
    static void install(Drives* drives);
};
