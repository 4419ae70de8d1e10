#include "app/mmcif.h"

#include <QStringView>

#include <algorithm>
#include <array>
#include <cstring>

namespace
{
// QLatin1String counts with strlen(), which not every compiler takes for a constant.
template<int size>
constexpr QLatin1String marker(const char (&text)[size])
{
    return QLatin1String(text, size - 1);
}

// A name that ends in "." stands for every item of its category. All begin with an underscore.
constexpr std::array<QLatin1String, 28> mmCifMarkers = {
    marker("_refine_b_iso.class"),
    marker("_refine_ls_shell.entry_id"),
    marker("_refine.entry_id"),
    marker("_pdbx_phasing_mr."),
    marker("_phasing_mir_der."),
    marker("_phasing_mir."),
    marker("_phasing_mad_clust."),
    marker("_phasing_mad_set."),
    marker("_phasing_mad.entry_id"),
    marker("_phasing_set.id"),
    marker("_computing.entry_id"),
    marker("_reflns.entry_id"),
    marker("_diffrn.id"),
    marker("_diffrn_source.diffrn_id"),
    marker("_diffrn_measurement.diffrn_id"),
    marker("_diffrn_detector.diffrn_id"),
    marker("_diffrn_radiation.diffrn_id"),
    marker("_cell.entry_id"),
    // One name, although it reads like two run together; neither half alone is a marker.
    marker("_exptl_crystal_grow._symmetry.entry_id"),
    marker("_pdbx_exptl_crystal_grow_sol."),
    marker("_pdbx_exptl_crystal_grow_comp."),
    marker("_pdbx_exptl_crystal_cryo_treatment."),
    marker("_struct_keywords."),
    marker("_struct_biol."),
    marker("_pdbx_entity_prod_protocol."),
    marker("_entity_src_nat."),
    marker("_entity_src_gen."),
    marker("_entity."),
};

constexpr int longestMarker = [] {
    int longest = 0;
    for (const QLatin1String& marker : mmCifMarkers)
        longest = std::max(longest, marker.size());
    return longest;
}();

QStringView fromNextUnderscore(QStringView text)
{
    const auto start = text.indexOf(QLatin1Char('_'));
    return start < 0 ? QStringView() : text.mid(start);
}

// Qt's own search makes characters of the bytes first.
QLatin1String fromNextUnderscore(QLatin1String text)
{
    const void* start = std::memchr(text.data(), '_', static_cast<size_t>(text.size()));
    return start ? QLatin1String(static_cast<const char*>(start), text.end()) : QLatin1String();
}

// View is a view of characters or of ASCII bytes, and may be as long as memory allows: one pass
// looks for underscores, and at what follows them.
template<typename View>
bool holdsMarker(View text)
{
    for (View rest = fromNextUnderscore(text); !rest.isEmpty();
         rest = fromNextUnderscore(rest.mid(1))) {
        const auto isHere = [rest](QLatin1String marker) {
            return rest.startsWith(marker, Qt::CaseInsensitive);
        };
        if (std::any_of(mmCifMarkers.begin(), mmCifMarkers.end(), isHere))
            return true;
    }
    return false;
}
} // namespace

bool isMmCifText(const QString& text)
{
    return holdsMarker(QStringView(text));
}

void MmCifSearch::read(const QString& piece)
{
    tail += piece;
    found = found || holdsMarker(QStringView(tail));
    tail = tail.right(longestMarker - 1);
}

void MmCifSearch::readAscii(const QByteArray& piece)
{
    // Only a marker across the border needs the characters before it.
    tail += QLatin1String(piece.constData(), std::min(piece.size(), longestMarker));
    found = found || holdsMarker(QStringView(tail)) ||
            holdsMarker(QLatin1String(piece.constData(), piece.size()));
    tail = piece.size() < longestMarker
               ? tail.right(longestMarker - 1)
               : QString::fromLatin1(piece.constData() + piece.size() - (longestMarker - 1));
}
