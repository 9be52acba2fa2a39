// The log directory of the process, as the product's log library gives it.
//
// A host chooses the directory by setting NORVANE_LOG_DIR before it is
// asked for. Without a choice it is "norvane/<program name>" in the
// temporary directory ($TMPDIR or /tmp on Linux, %TEMP% on Windows). The
// directory is created when it is missing.
#pragma once

extern "C" {

// Stores in *out a pointer to the log directory, zero-terminated and with a
// trailing separator, or null if it can't be told. The text stays valid
// until the calling thread asks again.
void norvane_1_getLogDir(wchar_t const** out);
}
