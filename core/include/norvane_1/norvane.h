// The public interface of the crash-handling library, in one include.
//
//   #include <norvane_1/norvane.h>
//
// Everything lives in namespace norvane_1. Link against norvane::norvane.
#pragma once

#include <norvane_1/crash_handling.h>
#include <norvane_1/dbghelp.h>
#include <norvane_1/exception_data.h>
#include <norvane_1/exception_handler.h>
#include <norvane_1/export.h>
#include <norvane_1/handler_state.h>
#include <norvane_1/minidump_task.h>
#include <norvane_1/module_map.h>
#include <norvane_1/os_layer.h>
#include <norvane_1/problem_report_storage.h>
#include <norvane_1/report_records.h>
#include <norvane_1/string_traits.h>
