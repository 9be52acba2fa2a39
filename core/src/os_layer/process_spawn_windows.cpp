// Starting the handler process on Windows and waiting for it. Windows code only.
//
// _wspawnv joins the arguments into one command line without quoting them,
// so the quoting is ours: the program's own name always between double
// quotes, every other argument only where it holds a blank. Quotes inside an
// argument are not escaped.
#include "os_layer/process_spawn.h"
#include "scoped_handle_windows.h"

#include <windows.h>
#include <process.h>

namespace norvane_1 {
namespace os_layer {
namespace {

std::wstring quotedIfBlank(std::wstring const& argument) {
    return argument.find(L' ') == std::wstring::npos ? argument : L"\"" + argument + L"\"";
}

}  // namespace

int spawnAndWait(std::wstring const& program, std::vector<std::wstring> const& arguments, void (*started)()) {
    std::vector<std::wstring> texts{L"\"" + program + L"\""};
    for (auto const& argument : arguments) texts.push_back(quotedIfBlank(argument));
    std::vector<wchar_t const*> argv;
    for (auto const& text : texts) argv.push_back(text.c_str());
    argv.push_back(nullptr);
    intptr_t const process = ::_wspawnv(_P_NOWAIT, program.c_str(), argv.data());
    if (process == -1) return -1;
    if (started != nullptr) started();
    ScopedHandle const handle(reinterpret_cast<HANDLE>(process));
    DWORD exitCode = 0;
    bool const ended = ::WaitForSingleObject(handle.get(), INFINITE) == WAIT_OBJECT_0 &&
                       ::GetExitCodeProcess(handle.get(), &exitCode);
    return ended ? static_cast<int>(exitCode) : -1;
}

}  // namespace os_layer
}  // namespace norvane_1
