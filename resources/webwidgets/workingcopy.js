// A look at the working copy, the CIF that manuscripts are made from.
Vexa.workingCopy = (function () {
    'use strict';

    var url = '../tmpcif.cif'; // beside the folder of this page
    var most = 8000000;        // characters: articles' items stand before the long lists
    var valuesAtOnce = 20000;  // a few milliseconds
    var cancel = function () {};

    function numbersOf(structure) {
        function number(name) {
            return parseFloat(structure[name]);
        }
        return {
            a: number('_cell_length_a'), b: number('_cell_length_b'), c: number('_cell_length_c'),
            alpha: number('_cell_angle_alpha'), beta: number('_cell_angle_beta'),
            gamma: number('_cell_angle_gamma')
        };
    }

    // Reads the text in slices, between which the page does other things.
    function scan(text, complete, onSummary) {
        var points = Vexa.sketch.gatherer();
        var collector = Vexa.summary.collector(Vexa.sketch.pointNames, points.keep);
        var reading = Vexa.cif.scan(text, collector);
        var timer = null;

        function finish() {
            var found = collector.found(complete);
            var summary = Vexa.summary.describe(found);
            summary.endsInText = complete && reading.cutOff;
            // The program reads UTF-8 and drops carriage returns: other letters come out as U+FFFD,
            // and a file with nothing but these at its line ends as one line.
            summary.isChanged = text.indexOf('\ufffd') >= 0 || text.indexOf('\n') < 0;
            summary.drawing = Vexa.sketch.draw(found.kind, points.columns, numbersOf(found.structure));
            onSummary(summary);
        }

        function slice() {
            if (reading.step(valuesAtOnce)) {
                finish();
            } else {
                timer = setTimeout(slice, 0);
            }
        }

        cancel = function () {
            clearTimeout(timer);
        };
        slice();
    }

    // Calls onSummary with what Vexa.summary tells of the copy, and a drawing of the structure or
    // null; or with null if the copy cannot be read. An earlier look that is still going on ends.
    function look(onSummary) {
        cancel();
        cancel = Vexa.fileText.read(url, most, function (text, complete) {
            scan(text, complete, onSummary);
        }, function () {
            onSummary(null);
        });
    }

    return {look: look};
}());
