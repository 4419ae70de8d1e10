// One sheet over the steps, for questions and for longer texts.
Vexa.dialog = (function () {
    'use strict';

    var view = Vexa.view;
    var onAccept = null;
    var returnFocusTo = null;

    function isOpen() {
        return !view.element('dialog').hidden;
    }

    function close() {
        view.show('dialog', false);
        onAccept = null;
        if (returnFocusTo) {
            returnFocusTo.focus();
        }
    }

    // options: title; lines (array of texts); accept (label of the main button);
    // onAccept (omitted where there is only something to read: then there is nothing to cancel).
    function open(options) {
        var text = view.element('dialog-text');
        text.textContent = '';
        options.lines.forEach(function (line) {
            var paragraph = document.createElement('p');
            paragraph.textContent = line;
            text.appendChild(paragraph);
        });
        view.setText('dialog-title', options.title);
        view.setText('dialog-accept', options.accept);
        view.show('dialog-cancel', Boolean(options.onAccept));
        returnFocusTo = document.activeElement;
        onAccept = options.onAccept || null;
        view.show('dialog', true);
        // The harmless answer has the focus.
        view.element(onAccept ? 'dialog-cancel' : 'dialog-accept').focus();
    }

    function accept() {
        var action = onAccept;
        close();
        if (action) {
            action();
        }
    }

    // While the sheet is up, Tab stays on it and Escape closes it.
    function onKey(event) {
        var buttons;
        if (!isOpen()) {
            return;
        }
        if (event.which === 27) {
            close();
        } else if (event.which === 9) {
            buttons = ['dialog-cancel', 'dialog-accept'].map(view.element).filter(function (button) {
                return !button.hidden;
            });
            buttons[document.activeElement === buttons[0] ? buttons.length - 1 : 0].focus();
            event.preventDefault();
        }
    }

    function start() {
        view.onClick('dialog-cancel', close);
        view.onClick('dialog-accept', accept);
        document.addEventListener('keydown', onKey, false);
    }

    return {start: start, open: open, isOpen: isOpen};
}());
