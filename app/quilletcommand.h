// How quillet is called for a journal.
#pragma once

#include <QString>

enum class GenerationRoute {
    None,           // quillet has nothing to offer for this journal
    Macromolecular, // sections D and F
    SmallMolecule   // sections B and C
};

// Decided by the section named in jnl, in any letter case; D and F come before B and C.
GenerationRoute generationRoute(const QString& jnl);

// The command line, with its own quotation marks; paths are not escaped. cifPath is the working
// copy, jnl, cat and type are the page's journal, category and sub-field ("sas": small-angle
// scattering). Empty for GenerationRoute::None.
QString quilletCommandLine(const QString& applicationFolder, const QString& cifPath,
                           const QString& jnl, const QString& cat, const QString& type);
