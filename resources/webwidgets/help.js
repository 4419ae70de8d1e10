// Help: the program in one screen.
Vexa.help = (function () {
    'use strict';

    var view = Vexa.view;

    function open() {
        var text = view.element('help-text').cloneNode(true);
        text.hidden = false;
        text.removeAttribute('id');
        Vexa.dialog.open({title: 'How Vexa Word works', content: text, accept: 'Close',
            other: Vexa.setupReport.isKnown() ? {label: 'Set-up report', action: Vexa.setupReport.open} : null});
    }

    // F1 explains; Ctrl+O and Ctrl+Q do what they do everywhere.
    function onKey(event) {
        var button = null;
        if (event.which === 112) {
            if (!Vexa.dialog.isOpen()) {
                open();
            }
        } else if (event.ctrlKey && event.which === 79) {
            button = view.element('choose-cif');
        } else if (event.ctrlKey && event.which === 81) {
            button = view.element('quit');
        } else {
            return;
        }
        event.preventDefault();
        if (button && (button.id === 'quit' || !Vexa.dialog.isOpen())) {
            button.click();
        }
    }

    function start() {
        view.onClick('help', open);
        document.addEventListener('keydown', onKey, false);
    }

    return {start: start};
}());
