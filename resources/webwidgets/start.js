// The state that the steps share, and the start.
Vexa.state = {
    connected: false,   // the program is there
    // {path, name, macromolecular, scattering, fileIsKnown, summary}: path is "" if it was fetched,
    // summary undefined while the working copy is still looked at, and null if it cannot be
    structure: null,
    waitingFor: null,   // {code, scattering} of the fetch that the user waits for
    journal: null,      // of VexaJournals
    category: null,     // of the journal
    scattering: false,  // a small-angle-scattering article is chosen
    making: false       // a manuscript is being made
};

// Brings the whole document in line with the state.
Vexa.render = function () {
    'use strict';
    Vexa.structure.render();
    Vexa.retrieval.render();
    Vexa.destination.render();
    Vexa.manuscript.render();
    Vexa.view.element('quit').disabled = !Vexa.state.connected;
};

(function () {
    'use strict';

    var state = Vexa.state;

    function connected() {
        state.connected = true;
        Vexa.render();
        if (document.activeElement === document.body) {
            Vexa.view.element('choose-cif').focus();
        }
        Vexa.structure.connected();
    }

    function missing() {
        Vexa.view.hint('manuscript-hint', 'error',
            'This page works inside Vexa Word only: start the program instead.');
    }

    // "Reload" would lose what was chosen; the text field keeps its menu.
    function refuseMenu(event) {
        if (event.target.id !== 'identifier') {
            event.preventDefault();
        }
    }

    Vexa.dialog.start();
    Vexa.structure.start(state);
    Vexa.retrieval.start(state);
    Vexa.card.start();
    Vexa.destination.start(state);
    Vexa.manuscript.start(state);
    Vexa.setupReport.start();
    Vexa.help.start();
    Vexa.textSize.start();
    Vexa.destination.restore();
    Vexa.view.onClick('quit', Vexa.bridge.quit);
    document.addEventListener('contextmenu', refuseMenu, false);
    Vexa.render();
    Vexa.bridge.whenConnected(connected, missing);
}());
