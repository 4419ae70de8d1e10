// The folders of the user that this program keeps files in, by the rules of the XDG base
// directories.
#pragma once

#include <QString>

namespace wordbridge
{

// For what can be made again: ~/.cache/vexaword.
QString cacheFolder();

// For what tells of earlier runs: ~/.local/state/vexaword.
QString stateFolder();

} // namespace wordbridge
