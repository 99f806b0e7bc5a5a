#pragma once

/// Opens /dev/null for each standard stream that the program was started without: a file that took its number would get
/// the log lines. To be called first.
void openStandardStreams();
