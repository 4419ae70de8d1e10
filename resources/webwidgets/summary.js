// What a CIF is about, told in a few lines. Plain functions, no document.
Vexa.summary = (function () {
    'use strict';

    var text = Vexa.cifText;

    // Data names in the spelling of keyOf, each with the items that may stand for it, best first.
    // "structure": of the first block that holds a structure; the rest may stand in any block.
    var structureItems = {
        formula: ['_chemical_formula_sum', '_chemical_formula_moiety'],
        a: ['_cell_length_a'],
        b: ['_cell_length_b'],
        c: ['_cell_length_c'],
        alpha: ['_cell_angle_alpha'],
        beta: ['_cell_angle_beta'],
        gamma: ['_cell_angle_gamma'],
        spaceGroup: ['_space_group_name_h-m_alt', '_symmetry_space_group_name_h-m',
            '_space_group_name_h-m_full', '_space_group_name_h-m_ref'],
        spaceGroupNumber: ['_space_group_it_number', '_symmetry_int_tables_number'],
        r: ['_refine_ls_r_factor_gt', '_refine_ls_r_factor_obs', '_pd_proc_ls_prof_r_factor'],
        wr: ['_refine_ls_wr_factor_ref', '_pd_proc_ls_prof_wr_factor'],
        rWork: ['_refine_ls_r_factor_r_work', '_refine_ls_r_factor_obs', '_refine_ls_r_factor_all'],
        rFree: ['_refine_ls_r_factor_r_free'],
        resolution: ['_refine_ls_d_res_high', '_reflns_d_resolution_high',
            '_em_3d_reconstruction_resolution'],
        method: ['_exptl_method'],
        rg: ['_sas_result_rg_from_guinier', '_sas_result_rg_from_pr'],
        dmax: ['_sas_result_d_max']
    };
    var textItems = {
        publTitle: ['_publ_section_title'],
        structTitle: ['_struct_title'],
        citationTitle: ['_citation_title'],
        scanTitle: ['_sas_scan_title', '_sas_sample_name'],
        entry: ['_entry_id'],
        sasCode: ['_sas_result_sasbdb_code']
    };
    var listItems = ['_publ_author_name', '_audit_author_name', '_citation_author_name',
        '_citation_author_citation_id'];

    // What makes a block one with a structure; atoms do, too.
    var structureSigns = ['_cell_length_a', '_chemical_formula_sum', '_sas_result_rg_from_guinier',
        '_sas_result_d_max'];

    var kindNames = {
        'small-molecule': 'Small molecule',
        'macromolecule': 'Macromolecule',
        'scattering': 'Scattering',
        'other': 'Other CIF'
    };

    // Core names exist with a dot and with an underscore.
    function keyOf(name) {
        return name.replace('.', '_');
    }

    function namesOf(items) {
        var names = {};
        Object.keys(items).forEach(function (key) {
            items[key].forEach(function (name) {
                names[name] = true;
            });
        });
        return names;
    }

    var structureNames = namesOf(structureItems);
    var textNames = namesOf(textItems);

    // Gathers, as the handler of Vexa.cif.scan, what describe() tells. keepPoint(key, value) gets the
    // values of the names that pointNames has as properties, of the first structure only.
    function collector(pointNames, keepPoint) {
        var structures = 0;
        var blocks = [];      // what stands before the first, then each: values by name, texts, lists
        var block = null;     // the one that is read
        var structure = null; // the first block that holds a structure
        var signs = {};       // names that tell the kind

        function startBlock() {
            block = {isStructure: false, texts: {}, lists: {}};
            blocks.push(block);
        }

        function noticeSign(name, key) {
            if (name.indexOf('_sas_') === 0) {
                signs.scattering = true;
            } else if (name.indexOf('_ma_') === 0) {
                signs.computed = true;
            } else if (name === '_entry.id' || name === '_entity.id' || name === '_atom_site.cartn_x' ||
                    name === '_entity_poly.entity_id') {
                signs.macromolecule = true;
            } else if (key === '_cell_length_a' || key === '_chemical_formula_sum' ||
                    key === '_atom_site_label' || key === '_publ_section_title') {
                signs.core = true;
            }
        }

        function wants(name) {
            var key = keyOf(name);
            noticeSign(name, key);
            if (pointNames[key]) {
                markStructure();
                return block === structure;
            }
            return structureNames[key] || textNames[key] || listItems.indexOf(key) >= 0;
        }

        function markStructure() {
            if (!block.isStructure) {
                block.isStructure = true;
                structures += 1;
                structure = structure || block;
            }
        }

        function value(name, given) {
            var key = keyOf(name);
            if (pointNames[key]) {
                keepPoint(key, given);
            }
            if (listItems.indexOf(key) >= 0) {
                block.lists[key] = block.lists[key] || [];
                block.lists[key].push(given);
            } else if (given !== null) {
                if (structureSigns.indexOf(key) >= 0) {
                    markStructure();
                }
                if (textNames[key] && block.texts[key] === undefined) {
                    block.texts[key] = given;
                }
                if (structureNames[key] && block[key] === undefined) {
                    block[key] = given;
                }
            }
        }

        function kind() {
            if (signs.scattering) {
                return 'scattering';
            }
            return signs.macromolecule ? 'macromolecule' : (signs.core ? 'small-molecule' : 'other');
        }

        // What the structure's block says, else what a block without a structure does, else any: a
        // title may be that of the whole study. Lists of several blocks are never joined.
        function gathered(property) {
            var sources = [structure].concat(blocks.filter(function (other) {
                return !other.isStructure;
            }), blocks);
            return sources.filter(Boolean).reduce(function (result, source) {
                Object.keys(source[property]).forEach(function (key) {
                    result[key] = result[key] || source[property][key];
                });
                return result;
            }, {});
        }

        // complete: whether the whole file has been seen.
        function found(complete) {
            return {
                blocks: blocks.length - 1,
                structures: structures,
                kind: kind(),
                structure: structure || blocks[1] || blocks[0],
                computed: Boolean(signs.computed),
                texts: gathered('texts'),
                lists: gathered('lists'),
                complete: complete
            };
        }

        startBlock();
        return {
            block: startBlock,
            wants: wants,
            value: value,
            found: found
        };
    }

    function pick(values, names) {
        var first = names.filter(function (name) {
            return values[name] !== undefined;
        })[0];
        return first === undefined ? '' : text.plain(values[first]);
    }

    // Numbers of the macromolecular files come with more digits than anybody reads.
    function rounded(number, digits) {
        return /^\d*\.\d+$/.test(number) && number.length - number.indexOf('.') - 1 > digits ?
            Number(number).toFixed(digits) : number;
    }

    function cellOf(get, digits) {
        var lengths = ['a', 'b', 'c'].map(get);
        var angles = ['alpha', 'beta', 'gamma'].map(get);
        if (lengths.indexOf('') >= 0) {
            return '';
        }
        function join(values) {
            return values.map(function (number) {
                return number === '' ? '?' : rounded(number, digits).replace(/^(\d+)\.0+$/, '$1');
            }).join(', ');
        }
        return join(lengths) + ' Å; ' + join(angles) + '°';
    }

    function authorsOf(found) {
        var lists = found.lists;
        var citation = lists._citation_author_citation_id || [];
        var cited = (lists._citation_author_name || []).filter(function (name, i) {
            return citation[i] === undefined || citation[i] === citation[0] || citation[i] === 'primary';
        });
        var sources = [lists._publ_author_name, cited, lists._audit_author_name];
        if (found.kind === 'small-molecule') {
            sources.splice(1, 1);
        }
        return sources.map(function (list) {
            return (list || []).filter(Boolean).map(text.plain);
        }).filter(function (list) {
            return list.length;
        })[0] || [];
    }

    // Family name, to save room; a group has none.
    function familyName(author) {
        var comma = author.lastIndexOf(',');
        var initials = / [A-Z]{1,3}$/;
        if (comma > 0) {
            return author.substring(0, comma);
        }
        if (/\)$/.test(author)) {
            return author;
        }
        return initials.test(author) ? author.replace(initials, '') :
            author.substring(author.lastIndexOf(' ') + 1);
    }

    function shortAuthors(authors) {
        var most = 3;
        var names = authors.slice(0, most).map(familyName).join(', ');
        return authors.length > most ? names + ' and ' + (authors.length - most) + ' more' : names;
    }

    function titleOf(found) {
        var order = {
            'scattering': ['citationTitle', 'scanTitle'],
            'macromolecule': ['structTitle', 'publTitle', 'citationTitle']
        }[found.kind] || ['publTitle', 'structTitle'];
        return order.map(function (key) {
            return pick(found.texts, textItems[key]);
        }).filter(Boolean)[0] || '';
    }

    // Each row: label, value, and short, the value as the card shows it, where that differs. A row
    // without a value is missing.
    function row(label, value, short) {
        return {label: label, value: value, short: short === undefined ? value : short};
    }

    function rFactors(first, firstName, second, secondName) {
        return [first && firstName + ' ' + first, second && secondName + ' ' + second]
            .filter(Boolean).join(', ').replace(/ \./g, ' 0.');
    }

    function methodOf(found) {
        return pick(found.structure, structureItems.method).toLowerCase() ||
            (found.computed ? 'computed model' : '');
    }

    function rowsOf(found) {
        function get(key) {
            return pick(found.structure, structureItems[key]);
        }
        function getWithoutDeviation(key) {
            return get(key).replace(/\(\d+\)$/, '');
        }
        var authors = authorsOf(found);
        var number = get('spaceGroupNumber');
        var group = get('spaceGroup') || (number && 'No. ' + number);
        return {
            title: row('Title', titleOf(found)),
            authors: row('Authors', authors.join('; '), shortAuthors(authors)),
            formula: row('Formula', text.formula(get('formula'))),
            entry: row('Entry', pick(found.texts, textItems.entry)),
            sasEntry: row('Entry', pick(found.texts, textItems.sasCode)),
            method: row('Method', methodOf(found)),
            group: row('Space group', text.spaceGroup(group)),
            cell: row('Cell', cellOf(get, 6), cellOf(getWithoutDeviation, 2)),
            resolution: row('Resolution', get('resolution') && rounded(get('resolution'), 2) + ' Å'),
            r: row('R factors', rFactors(get('r'), 'R', get('wr'), 'wR')),
            rWork: row('R factors', rFactors(rounded(get('rWork'), 3), 'R', rounded(get('rFree'), 3), 'free R')),
            rg: row('Radius of gyration', get('rg') && get('rg') + ' nm', get('rg') && 'Rg ' + get('rg') + ' nm'),
            dmax: row('Largest distance', get('dmax') && get('dmax') + ' nm',
                get('dmax') && 'Dmax ' + get('dmax') + ' nm')
        };
    }

    // Which rows belong to a kind, in their order: "identity" and "quality" are the card's lines.
    function layoutOf(found) {
        var method = methodOf(found);
        var isCrystal = method === '' || /diffraction|crystallography/.test(method);
        if (found.kind === 'scattering') {
            return {identity: ['sasEntry'], quality: ['rg', 'dmax', 'authors']};
        }
        if (found.kind === 'macromolecule') {
            return isCrystal ?
                {identity: ['entry', 'group', 'cell'], quality: ['resolution', 'rWork', 'authors']} :
                {identity: ['entry', 'method'],
                    quality: (/microscopy/.test(method) ? ['resolution'] : []).concat('authors')};
        }
        return {identity: ['formula', 'group', 'cell'], quality: ['r', 'authors']};
    }

    // The outcome for people: kind and kindName; rows in their order, {label, value} with an empty
    // value where something is missing; entry; the card's lines title, identity and quality; missing, the
    // labels of what is missing; blocks, structures and complete as found.
    function describe(found) {
        var rows = rowsOf(found);
        var layout = layoutOf(found);
        var used = ['title'].concat(layout.identity, layout.quality);
        function line(keys) {
            return keys.map(function (key) {
                return rows[key].short;
            }).filter(Boolean).join(' · ');
        }
        return {
            kind: found.kind,
            kindName: kindNames[found.kind],
            rows: used.map(function (key) {
                return rows[key];
            }),
            entry: found.kind === 'scattering' ? rows.sasEntry.value : rows.entry.value,
            title: rows.title.value,
            identity: line(layout.identity),
            quality: line(layout.quality),
            missing: used.filter(function (key) {
                return !rows[key].value;
            }).map(function (key) {
                return rows[key].label;
            }),
            blocks: found.blocks,
            structures: found.structures,
            complete: found.complete
        };
    }

    return {collector: collector, describe: describe, keyOf: keyOf};
}());
