// The report of the program's set-up. Where all is well it is in sight only for those who ask;
// a failure is told in plain words, with the details on request.
Vexa.setupReport = (function () {
    'use strict';

    var view = Vexa.view;
    var lines = [];

    function hasFailed() {
        return lines.some(function (line) {
            return line.indexOf('ERROR') === 0;
        });
    }

    // What a failure means for the user.
    function summary() {
        var templates = lines.some(function (line) {
            return /^ERROR.*resources folder/.test(line);
        });
        return templates ? 'Your own folder of templates could not be made.' :
            'Set-up could not be completed.';
    }

    // The report is lines of plain text joined by <br />. It is shown as text: a folder's name may
    // hold characters that mean something in HTML.
    function show(report) {
        lines = report.split(/<br\s*\/?>/).filter(function (line) {
            return line !== '';
        });
        view.setText('setup-summary', summary());
        view.show('setup-strip', hasFailed());
    }

    function advice() {
        return hasFailed() ? ['Vexa Word works without what failed as far as it can. Is the home folder ' +
            'full or write-protected? If a folder named below is there but not whole, delete it; ' +
            'the next start makes it again.'] : [];
    }

    function open() {
        Vexa.dialog.open({title: 'Set-up report', lines: advice().concat(lines), accept: 'Close'});
    }

    function hide() {
        view.show('setup-strip', false);
        view.element('choose-cif').focus();
    }

    function isKnown() {
        return lines.length > 0;
    }

    function start() {
        view.onClick('setup-details', open);
        view.onClick('setup-dismiss', hide);
    }

    return {start: start, show: show, open: open, isKnown: isKnown};
}());

// Called by the program by this name.
function showsetupinfo(report) {
    'use strict';
    Vexa.setupReport.show(report);
}
