// The only file that speaks to the program. The program publishes its object "Quillet" after each
// finished load, so nothing may be called before whenConnected's callback.
Vexa.bridge = (function () {
    'use strict';

    var attempt = 50; // milliseconds
    var patience = 8000;

    function connected() {
        return typeof window.Quillet === 'object' && window.Quillet !== null;
    }

    // Calls callback once, as soon as the program is there. Calls missing once, if it is still not
    // there after a few seconds: then this page lies in another program.
    function whenConnected(callback, missing) {
        var waited = 0;
        var timer = setInterval(function () {
            waited += attempt;
            if (connected()) {
                clearInterval(timer);
                callback();
            } else if (waited === patience) {
                missing();
            }
        }, attempt);
    }

    // Asks the user for a file; returns only when the dialog is closed.
    function chooseCif() {
        return Vexa.rules.readSetCifAnswer(window.Quillet.setCif(''));
    }

    // Takes the file at a path, which may need as long as copying it does.
    function takeCif(path) {
        return Vexa.rules.readSetCifAnswer(window.Quillet.setCif(path));
    }

    // Returns at once; the program answers through pdbResponse, perhaps never.
    function fetchCif(code) {
        window.Quillet.getPdbCif(code);
    }

    function saveCif() {
        return window.Quillet.saveCif();
    }

    // Returns when the manuscript has been handed over and the window is closed, or when nothing
    // came of it. Must be called straight from a user's click: called from a timer it would keep
    // all other timers of the page from running.
    function makeManuscript(journal, category, scattering) {
        window.Quillet.createWordTemplate('', journal, category, scattering ? 'sas' : '');
    }

    function openTemplate(journal, category, scattering) {
        window.Quillet.openWordTemplate('', journal, category, scattering ? 'sas' : '');
    }

    function quit() {
        window.Quillet.quit();
    }

    return {
        whenConnected: whenConnected,
        chooseCif: chooseCif,
        takeCif: takeCif,
        fetchCif: fetchCif,
        saveCif: saveCif,
        makeManuscript: makeManuscript,
        openTemplate: openTemplate,
        quit: quit
    };
}());
