#include "app/mmcif.h"

#include <QStringView>

#include <algorithm>
#include <array>

namespace
{
// A name that ends in "." stands for every item of its category. All begin with an underscore.
constexpr std::array<QLatin1String, 28> mmCifMarkers = {
    QLatin1String("_refine_b_iso.class"),
    QLatin1String("_refine_ls_shell.entry_id"),
    QLatin1String("_refine.entry_id"),
    QLatin1String("_pdbx_phasing_mr."),
    QLatin1String("_phasing_mir_der."),
    QLatin1String("_phasing_mir."),
    QLatin1String("_phasing_mad_clust."),
    QLatin1String("_phasing_mad_set."),
    QLatin1String("_phasing_mad.entry_id"),
    QLatin1String("_phasing_set.id"),
    QLatin1String("_computing.entry_id"),
    QLatin1String("_reflns.entry_id"),
    QLatin1String("_diffrn.id"),
    QLatin1String("_diffrn_source.diffrn_id"),
    QLatin1String("_diffrn_measurement.diffrn_id"),
    QLatin1String("_diffrn_detector.diffrn_id"),
    QLatin1String("_diffrn_radiation.diffrn_id"),
    QLatin1String("_cell.entry_id"),
    // One name, although it reads like two run together; neither half alone is a marker.
    QLatin1String("_exptl_crystal_grow._symmetry.entry_id"),
    QLatin1String("_pdbx_exptl_crystal_grow_sol."),
    QLatin1String("_pdbx_exptl_crystal_grow_comp."),
    QLatin1String("_pdbx_exptl_crystal_cryo_treatment."),
    QLatin1String("_struct_keywords."),
    QLatin1String("_struct_biol."),
    QLatin1String("_pdbx_entity_prod_protocol."),
    QLatin1String("_entity_src_nat."),
    QLatin1String("_entity_src_gen."),
    QLatin1String("_entity."),
};
} // namespace

bool isMmCifText(const QString& text)
{
    // One pass over a text that may be as long as memory allows: only underscores are looked at.
    const QStringView all(text);
    for (int start = text.indexOf(QLatin1Char('_')); start >= 0;
         start = text.indexOf(QLatin1Char('_'), start + 1)) {
        const QStringView rest = all.mid(start);
        const auto isHere = [rest](QLatin1String marker) {
            return rest.startsWith(marker, Qt::CaseInsensitive);
        };
        if (std::any_of(mmCifMarkers.begin(), mmCifMarkers.end(), isHere))
            return true;
    }
    return false;
}
