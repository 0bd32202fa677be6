#pragma once

#include <string>

#include <QtGlobal>

// What a job and its listener exchange: the kinds of jobs and events, and the record of each event.

// The kind of a job.
enum OP_Type {
    OP_ERASE = 0,
    OP_DOWNLOAD = 1,
    OP_VERIFY = 2,
    OP_UPLOAD = 3,
    OP_ACCESS_PROTECT = 4,
    OP_ACCESS_UNPROTECT = 5,
    OP_ERASEPROGRAM_PROTECT = 6,
    OP_ERASEPROGRAM_UNPROTECT = 7,
    OP_FWCRC = 8,
    OP_ENBANK3 = 9,
    OP_WRITESN = 10,
    OP_WRITEUSERSYSTEMDATA = 11,
    OP_ENSLIB = 12,
    OP_DISSLIB = 13,
    OP_DOWNLOADPROJECT = 14, // MEANT: no job carries it; the project download reports OP_DOWNLOAD
    OP_FLASHCRC = 15
};

// The kind of an event. A top-level job ends with exactly one of CANCEL, ABEND and DONE.
enum InfoType {
    INFO_TYPE_INIT = 0,
    INFO_TYPE_ACTION = 1,
    INFO_TYPE_CANCEL = 2,
    INFO_TYPE_ABEND = 3,
    INFO_TYPE_DONE = 4,
    INFO_TYPE_INFO = 5
};

// Whether a job has been started.
enum Status {
    STOP = 0,
    SRART = 1 // MEANT: spelled so throughout
};

// What a job is to do next.
enum Command {
    COMMAND_NONE = 0,
    COMMAND_CONTINUE = 1,
    COMMAND_CANCEL = 2,
    COMMAND_ABEND = 3, // never set: an abnormal end travels as a return value
    COMMAND_DONE = 4
};

// What a download erases first.
enum EraseMode {
    ERASEMODE_NONE = 0,
    NECESSARY = 1, // the sectors that the images touch
    GLOBAL = 2     // the whole device
};

// The listener: the event and the address of its record, which holds during the call only. The
// result is ignored.
typedef void *(*lpFunc)(InfoType, void *);

// With INFO_TYPE_CANCEL and INFO_TYPE_DONE.
struct CBaseInfo {
    int m_nPortNum = 0; // port tag: the low 32 bits of the link handle
    OP_Type m_emType = OP_ERASE;
    uint m_nNextSN = 0; // no job writes it
};

// With INFO_TYPE_INIT.
struct CInitInfo {
    int m_nPortNum = 0;
    OP_Type m_emType = OP_ERASE;
    std::string m_strName; // display name, the file in it where there is one
    bool m_bSubOperation = false;
    std::string m_strFilePath; // empty where the job has no file
    uint m_uiFileSize = 0;     // bytes; 0 where the job has no file
};

// With INFO_TYPE_ACTION.
struct CActionInfo {
    int m_nPortNum = 0;
    int m_iPercent = 0;      // 0 to 100
    uint m_uiFileStatus = 0; // bytes of the file done so far
    OP_Type m_emType = OP_ERASE;
};

// With INFO_TYPE_ABEND.
struct CAbendInfo {
    int m_nPortNum = 0;
    int m_iResult = 0; // a CResult code
};
