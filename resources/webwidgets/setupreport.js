// The report of the program's set-up: one line in plain words, the details on request.
Vexa.setupReport = (function () {
    'use strict';

    var view = Vexa.view;
    var lines = [];

    // The report is lines of plain text joined by <br />. It is shown as text: a folder's name may
    // hold characters that mean something in HTML.
    function show(report) {
        lines = report.split(/<br\s*\/?>/).filter(function (line) {
            return line !== '';
        });
        var failed = lines.some(function (line) {
            return line.indexOf('ERROR') === 0;
        });
        view.setText('setup-summary', failed ?
            'Set-up could not be completed.' :
            'Vexa Word has been set up for you.');
        view.element('setup-strip').setAttribute('data-kind', failed ? 'error' : 'good');
        view.show('setup-strip', lines.length > 0);
    }

    function showDetails() {
        Vexa.dialog.open({title: 'Set-up', lines: lines, accept: 'Close'});
    }

    function hide() {
        view.show('setup-strip', false);
        view.element('choose-cif').focus();
    }

    function start() {
        view.onClick('setup-details', showDetails);
        view.onClick('setup-dismiss', hide);
    }

    return {start: start, show: show};
}());

// Called by the program by this name.
function showsetupinfo(report) {
    'use strict';
    Vexa.setupReport.show(report);
}
