// The size of all text: Ctrl with +, - and 0, or with the wheel. All lengths of the page follow it.
Vexa.textSize = (function () {
    'use strict';

    var usual = 13; // CSS pixels
    var factors = [1, 1.15, 1.3, 1.5, 1.75, 2];
    var step = 0;

    // Classes for the layout: with large text a wide window is as narrow as a small one.
    function fit() {
        var size = usual * factors[step];
        var page = document.documentElement;
        page.style.fontSize = size + 'px';
        document.body.className =
            (window.innerWidth / size < 36 ? 'narrow ' : '') +
            (window.innerHeight / size < 24 ? 'low' : '');
        Vexa.card.repaint();
    }

    function set(wanted) {
        step = Math.max(0, Math.min(factors.length - 1, wanted));
        Vexa.memory.set('text', step);
        fit();
    }

    function onKey(event) {
        var change = {187: 1, 107: 1, 61: 1, 43: 1, 189: -1, 109: -1, 173: -1}[event.which];
        if (!event.ctrlKey || event.altKey) {
            return;
        }
        if (change) {
            set(step + change);
        } else if (event.which === 48 || event.which === 96) {
            set(0);
        } else {
            return;
        }
        event.preventDefault();
    }

    function onWheel(event) {
        if (event.ctrlKey) {
            set(step + (event.wheelDelta > 0 ? 1 : -1));
            event.preventDefault();
        }
    }

    function start() {
        var remembered = Vexa.memory.get('text');
        step = factors[remembered] ? remembered : 0;
        document.addEventListener('keydown', onKey, false);
        document.addEventListener('mousewheel', onWheel, false);
        window.addEventListener('resize', fit, false);
        fit();
    }

    return {start: start};
}());
