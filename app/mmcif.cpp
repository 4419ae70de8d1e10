#include "app/mmcif.h"

#include <algorithm>
#include <array>

namespace
{
// A name that ends in "." stands for every item of its category.
constexpr std::array mmCifMarkers = {
    "_refine_b_iso.class",
    "_refine_ls_shell.entry_id",
    "_refine.entry_id",
    "_pdbx_phasing_mr.",
    "_phasing_mir_der.",
    "_phasing_mir.",
    "_phasing_mad_clust.",
    "_phasing_mad_set.",
    "_phasing_mad.entry_id",
    "_phasing_set.id",
    "_computing.entry_id",
    "_reflns.entry_id",
    "_diffrn.id",
    "_diffrn_source.diffrn_id",
    "_diffrn_measurement.diffrn_id",
    "_diffrn_detector.diffrn_id",
    "_diffrn_radiation.diffrn_id",
    "_cell.entry_id",
    // One name, although it reads like two run together; neither half alone is a marker.
    "_exptl_crystal_grow._symmetry.entry_id",
    "_pdbx_exptl_crystal_grow_sol.",
    "_pdbx_exptl_crystal_grow_comp.",
    "_pdbx_exptl_crystal_cryo_treatment.",
    "_struct_keywords.",
    "_struct_biol.",
    "_pdbx_entity_prod_protocol.",
    "_entity_src_nat.",
    "_entity_src_gen.",
    "_entity.",
};
} // namespace

bool isMmCifText(const QString& text)
{
    return std::any_of(mmCifMarkers.begin(), mmCifMarkers.end(), [&text](const char* marker) {
        return text.contains(QLatin1String(marker), Qt::CaseInsensitive);
    });
}
