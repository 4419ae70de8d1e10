// Works the page's own controls, as a user would, for VexaDemonstration: {cif, scattering}.
(function () {
    'use strict';

    function control(id) {
        return document.getElementById(id);
    }

    function choose(id, value) {
        var change = document.createEvent('Event');
        control(id).value = value;
        change.initEvent('change', true, true);
        control(id).dispatchEvent(change);
    }

    function makeManuscript() {
        // The open dialog is the one thing that a script cannot work.
        Vexa.bridge.chooseCif = function () {
            return Vexa.rules.readSetCifAnswer(Quillet.setCif(VexaDemonstration.cif));
        };
        control('choose-cif').click();
        if (Vexa.state.structure) {
            choose('journal', Vexa.state.structure.macromolecular ? 'Journal Section D' :
                'Journal Section C');
            choose('category', 'research papers');
            if (VexaDemonstration.scattering !== control('sas').checked) {
                control('sas').click();
            }
            control('make-manuscript').click();
        }
        Quillet.quit(); // the window is closed already, unless nothing came of it
    }

    var waiting = setInterval(function () {
        if (Vexa.state.connected) {
            clearInterval(waiting);
            makeManuscript();
        }
    }, 50);
}());
