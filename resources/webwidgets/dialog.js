// One sheet over the steps, for questions and for longer texts.
Vexa.dialog = (function () {
    'use strict';

    var view = Vexa.view;
    var onAccept = null;
    var onOther = null;
    var returnFocusTo = null;

    function isOpen() {
        return !view.element('dialog').hidden;
    }

    function close() {
        view.show('dialog', false);
        onAccept = null;
        onOther = null;
        if (returnFocusTo) {
            returnFocusTo.focus();
        }
    }

    // A value that is missing is said to be.
    function tableOf(rows) {
        var list = view.make('dl');
        rows.forEach(function (row) {
            list.appendChild(view.make('dt', '', row.label));
            list.appendChild(view.make('dd', row.value ? '' : 'missing', row.value || 'missing'));
        });
        return list;
    }

    function fill(text, options) {
        text.textContent = '';
        text.scrollTop = 0;
        if (options.content) {
            text.appendChild(options.content);
        }
        if (options.rows) {
            text.appendChild(tableOf(options.rows));
        }
        (options.lines || []).forEach(function (line) {
            text.appendChild(view.make('p', '', line));
        });
    }

    // options: title; accept (label of the main button); and of what is said: content (an element),
    // rows (array of {label, value}) and lines (array of texts). onAccept is omitted where there is
    // only something to read: then there is nothing to cancel. other: one button more,
    // {label, action}, or null.
    function open(options) {
        fill(view.element('dialog-text'), options);
        view.setText('dialog-title', options.title);
        view.setText('dialog-accept', options.accept);
        view.show('dialog-cancel', Boolean(options.onAccept));
        view.show('dialog-other', Boolean(options.other));
        if (options.other) {
            view.setText('dialog-other', options.other.label);
        }
        if (!isOpen()) {
            returnFocusTo = document.activeElement;
        }
        onAccept = options.onAccept || null;
        onOther = options.other ? options.other.action : null;
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

    function other() {
        onOther();
    }

    function shownButtons() {
        return ['dialog-other', 'dialog-cancel', 'dialog-accept'].map(view.element).filter(function (button) {
            return !button.hidden;
        });
    }

    // While the sheet is up, Tab stays on it, arrows scroll it and Escape closes it.
    function onKey(event) {
        var scroll = {38: -40, 40: 40, 33: -200, 34: 200}[event.which];
        var buttons;
        if (!isOpen()) {
            return;
        }
        if (event.which === 27) {
            close();
        } else if (event.which === 9) {
            buttons = shownButtons();
            buttons[(buttons.indexOf(document.activeElement) + (event.shiftKey ? buttons.length - 1 : 1)) %
                buttons.length].focus();
        } else if (scroll) {
            view.element('dialog-text').scrollTop += scroll;
        } else {
            return;
        }
        event.preventDefault();
    }

    function start() {
        view.onClick('dialog-cancel', close);
        view.onClick('dialog-accept', accept);
        view.onClick('dialog-other', other);
        document.addEventListener('keydown', onKey, false);
    }

    return {start: start, open: open, isOpen: isOpen};
}());
