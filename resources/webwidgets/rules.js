// What is allowed when, and how inputs are read: plain functions of their arguments, no document.
var Vexa = {};

Vexa.rules = (function () {
    'use strict';

    // What was typed as an identifier: {code, scattering}, or {problem} with a sentence for the user.
    // Codes of scattering entries are sent in capitals, since the program knows them only so.
    function readIdentifier(typed) {
        var code = typed.replace(/^\s+|\s+$/g, '');
        if (code === '') {
            return {problem: 'Type an identifier first: a PDB code such as 5I55, or a SAS code such as SASDA52.'};
        }
        if (/^sas[a-z0-9]{4}$/i.test(code)) {
            return {code: code.toUpperCase(), scattering: true};
        }
        if (/^[0-9][a-z0-9]{3}$/i.test(code) || /^pdb_[0-9a-z]{8}$/i.test(code)) {
            return {code: code, scattering: false};
        }
        return {
            problem: '“' + code + '” is not an identifier. A PDB code is a digit and three ' +
                'letters or digits (5I55); a SAS code is SAS and four (SASDA52).'
        };
    }

    // The answer of setCif: {path, macromolecular}, or null when no CIF was taken.
    function readSetCifAnswer(answer) {
        var prefix = 'mmCIF: ';
        if (!answer) {
            return null;
        }
        if (answer.indexOf(prefix) === 0) {
            return {path: answer.substring(prefix.length), macromolecular: true};
        }
        return {path: answer, macromolecular: false};
    }

    function fileName(path) {
        return path.substring(path.lastIndexOf('/') + 1);
    }

    // The last folder's name only: a whole path seldom fits where this is shown.
    function folderName(path) {
        return fileName(path.substring(0, path.lastIndexOf('/'))) || '/';
    }

    // A name that fits into a line: beginning and end, where names differ most.
    function shortName(name) {
        var most = 30;
        return name.length <= most ? name :
            name.substring(0, most - 13) + '…' + name.substring(name.length - 12);
    }

    // As many characters as may stand before a CIF's first data block.
    var enoughToKnowACif = 300000;

    // Why a file that begins with text is no CIF; empty if it may be one.
    function cifProblem(text) {
        if (/\u0000/.test(text.substring(0, 1000))) {
            return 'there are zero bytes in it.';
        }
        return /(^|[\s\ufeff])(data_|global_)/i.test(text) ? '' : 'there is no data block in it.';
    }

    // What a structure is: "small-molecule", "macromolecule", "scattering", or "" if that is not known.
    function kindOf(structure) {
        var kind = structure.summary ? structure.summary.kind : '';
        if (kind && kind !== 'other') {
            return kind; // looked at, not guessed
        }
        if (structure.scattering) {
            return 'scattering';
        }
        return structure.macromolecular ? 'macromolecule' : '';
    }

    // In each of the following, state is Vexa.state (start.js). An empty answer means: go ahead.

    // Why nothing that changes the CIF or uses it can be done at this moment.
    function busyProblem(state) {
        if (!state.connected) {
            return 'Starting…';
        }
        if (state.making) {
            return 'The manuscript is being made.';
        }
        if (state.waitingFor) {
            return 'Waiting for ' + state.waitingFor.code + '.';
        }
        return '';
    }

    // What is missing for the current CIF to be written back.
    function fileProblem(structure) {
        if (!structure) {
            return 'There is no CIF to write back yet.';
        }
        if (!structure.path) {
            return 'Fetched: there is no file of your own to write it back to.';
        }
        if (structure.summary && structure.summary.isChanged) {
            return 'Its encoding or line ends were lost in the copy: it cannot be written back.';
        }
        return structure.fileIsKnown ? '' : 'To write back, choose the file again.';
    }

    function saveProblem(state) {
        return busyProblem(state) || fileProblem(state.structure);
    }

    function openProblem(state) {
        if (busyProblem(state)) {
            return busyProblem(state);
        }
        return state.journal ? '' : 'Choose a journal first.';
    }

    // Whether the chosen article is one that is made from a CIF at all.
    function madeFromCif(state) {
        return state.journal.generates !== 'nothing' && state.category.fromCif;
    }

    function makeProblem(state) {
        if (openProblem(state)) {
            return openProblem(state);
        }
        if (state.journal.generates === 'nothing') {
            return 'For ' + state.journal.name + ' there is only the ready-made template.';
        }
        if (!state.category.fromCif) {
            return state.category.label + ' are not made from a CIF: open the ready-made template.';
        }
        return state.structure ? '' : 'Choose or fetch a CIF to make the manuscript from it.';
    }

    // A doubt about a manuscript that can be made all the same.
    function makeDoubt(state) {
        if (makeProblem(state)) {
            return '';
        }
        return kindDoubt(state.journal, kindOf(state.structure), state.scattering);
    }

    function kindDoubt(journal, kind, sasChosen) {
        if (journal.generates === 'small-molecule' && (kind === 'macromolecule' || kind === 'scattering')) {
            return journal.name + ' expects a small-molecule CIF; this one is ' +
                (kind === 'scattering' ? 'of scattering.' : 'macromolecular.');
        }
        if (journal.generates === 'macromolecule' && kind !== 'macromolecule' && kind !== 'scattering') {
            return journal.name + ' expects a macromolecular CIF (mmCIF); this one is not.';
        }
        if (kind === 'scattering' && !sasChosen) {
            return 'This is a scattering entry, but no SAS article is chosen.';
        }
        if (kind === 'macromolecule' && sasChosen) {
            return 'A SAS article is chosen; this CIF does not look like one of scattering.';
        }
        return '';
    }

    return {
        readIdentifier: readIdentifier,
        readSetCifAnswer: readSetCifAnswer,
        fileName: fileName,
        folderName: folderName,
        shortName: shortName,
        enoughToKnowACif: enoughToKnowACif,
        cifProblem: cifProblem,
        busyProblem: busyProblem,
        fileProblem: fileProblem,
        saveProblem: saveProblem,
        openProblem: openProblem,
        madeFromCif: madeFromCif,
        makeProblem: makeProblem,
        makeDoubt: makeDoubt
    };
}());
