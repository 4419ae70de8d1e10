// The card of the current CIF: what it is about, in a few lines and a sketch, and all of it on request.
Vexa.card = (function () {
    'use strict';

    var view = Vexa.view;
    var shown = null; // the structure that is on the card

    function kindOf(structure) {
        var summary = structure.summary;
        var kind;
        if (!summary) {
            return structure.macromolecular ? 'Macromolecule' : '';
        }
        kind = summary.kindName;
        return summary.structures > 1 && summary.kind !== 'scattering' ? kind + ', first of ' + summary.structures : kind;
    }

    // "R factors" keep their letter.
    function inSentence(label) {
        return /^[A-Z][a-z]/.test(label) ? label.charAt(0).toLowerCase() + label.substring(1) : label;
    }

    // What the reader of the card must know of what it does not say: {kind, text}.
    function noteOn(summary) {
        var missing = summary.missing.map(inSentence).join(', ');
        if (summary.blocks === 0) {
            return {kind: 'doubt', text: 'This does not look like a CIF: there is no data block in it.'};
        }
        if (summary.endsInText) {
            return {kind: 'doubt', text: 'The file ends inside a text: a semicolon is missing, or it is cut off.'};
        }
        if (!summary.complete) {
            return {kind: 'note', text: 'A large file: only its beginning was looked at.' +
                (missing ? ' Not seen there: ' + missing + '.' : '')};
        }
        return missing ? {kind: 'doubt', text: 'Missing: ' + missing + '.'} : {kind: 'note', text: ''};
    }

    function showLine(id, text) {
        view.setText(id, text);
        view.element(id).title = text;
        view.show(id, text !== '');
    }

    function showDrawing(drawing) {
        view.show('structure-sketch', Boolean(drawing));
        if (drawing) {
            Vexa.sketch.paint(view.element('structure-sketch'), drawing);
        }
    }

    function showSummary(summary) {
        var note = noteOn(summary);
        showLine('structure-title', summary.title);
        showLine('structure-identity', summary.identity);
        showLine('structure-quality', summary.quality);
        view.hint('structure-note', note.kind, note.text);
        showDrawing(summary.drawing);
    }

    function showNothing(text) {
        showLine('structure-title', '');
        showLine('structure-identity', '');
        showLine('structure-quality', '');
        view.hint('structure-note', 'note', text);
        showDrawing(null);
    }

    // Says what it says only once for each state of a structure: painting takes time.
    function render(structure) {
        var state = structure && [structure, structure.summary];
        view.show('structure-card', Boolean(structure));
        if (!structure || (shown && shown[0] === state[0] && shown[1] === state[1])) {
            return;
        }
        shown = state;
        view.setText('structure-name', Vexa.rules.shortName(structure.name));
        view.element('structure-name').title = structure.path || structure.name;
        view.setText('structure-kind', kindOf(structure));
        view.element('structure-kind').title = kindOf(structure);
        if (structure.summary) {
            showSummary(structure.summary);
        } else {
            showNothing(structure.summary === undefined ? 'Looking at it…' :
                'Nothing can be told of it: the working copy cannot be looked at.');
        }
    }

    function repaint() {
        if (shown && shown[1]) {
            showDrawing(shown[1].drawing);
        }
    }

    function openDetails() {
        var structure = shown[0];
        var summary = structure.summary;
        var where = structure.path ? {label: 'File', value: structure.path} :
            {label: 'Origin', value: 'fetched as ' + structure.name};
        Vexa.dialog.open({
            title: structure.name,
            rows: [where, {label: 'Kind', value: kindOf(structure)}].concat(summary.rows),
            lines: summary.complete && !summary.endsInText ? [] : [noteOn(summary).text],
            accept: 'Close'
        });
    }

    function start() {
        view.onClick('structure-details', openDetails);
    }

    return {start: start, render: render, repaint: repaint};
}());
