// The party that carries a crash on beyond the crashed process.
#pragma once

#include <norvane_1/export.h>

#include <string>
#include <vector>

namespace norvane_1 {

struct DumpInfo;

class NORVANE_API ExceptionHandler {
public:
    ExceptionHandler();
    ExceptionHandler(ExceptionHandler const& other);
    virtual ~ExceptionHandler();
    ExceptionHandler& operator=(ExceptionHandler const& other);

    // Carries the crash on, outside the crashed thread's code, and returns
    // the exit code that decides how the crash ends: 6 means "not our
    // exception", -1 that nothing could be started.
    virtual int handleCrash(DumpInfo const& info) = 0;
};

// Starts the handler process (by default the product's feedback tool) with
// the crash's files and ids on its command line, and waits for it.
class NORVANE_API ActualExceptionHandler : public ExceptionHandler {
public:
    ActualExceptionHandler();
    // Takes crash handling off the process first.
    ~ActualExceptionHandler() override;
    ActualExceptionHandler(ActualExceptionHandler const&) = delete;
    ActualExceptionHandler& operator=(ActualExceptionHandler const&) = delete;

    int handleCrash(DumpInfo const& info) override;

    // Chooses the handler's path: NORVANE_CRASH_HANDLER wins over `path`;
    // a path that can't be found leaves the former one.
    void setHandlerPath(wchar_t const* path);
    // Finds a relative path in the product's program directory (".exe" is
    // tried too on a miss); true if the path, as it now stands, exists.
    bool locateHandler(std::wstring& path);
    std::wstring const& getHandlerPath() const { return m_path; }

    // Starts `path` with `arguments` (each quoted if it holds a blank) and
    // waits for it. Its exit code, or -1 if it could not be started.
    static int spawnHandler(std::wstring const& path, std::vector<std::wstring> const& arguments);

private:
    std::wstring m_path;
};

}  // namespace norvane_1
