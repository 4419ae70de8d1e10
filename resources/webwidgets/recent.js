// The files used last, remembered from one start to the next, and the menu that offers them.
Vexa.recent = (function () {
    'use strict';

    var view = Vexa.view;
    var most = 6;
    var onPick = null;

    function list() {
        var paths = Vexa.memory.get('recent');
        return Array.isArray(paths) ? paths.filter(function (path) {
            return typeof path === 'string' && path !== '';
        }).slice(0, most) : [];
    }

    function without(path) {
        return list().filter(function (other) {
            return other !== path;
        });
    }

    function add(path) {
        Vexa.memory.set('recent', [path].concat(without(path)).slice(0, most));
    }

    function remove(path) {
        Vexa.memory.set('recent', without(path));
    }

    function isOpen() {
        return !view.element('recent-menu').hidden;
    }

    function items() {
        return Array.prototype.slice.call(view.element('recent-menu').children);
    }

    function close() {
        view.show('recent-menu', false);
    }

    function closeAndReturn() {
        close();
        view.element('recent').focus();
    }

    function itemFor(path) {
        var item = view.make('button', 'item');
        item.type = 'button';
        item.tabIndex = -1; // arrows move between the items; Tab leaves the menu
        item.title = path;
        item.appendChild(view.make('span', 'item-name', Vexa.rules.fileName(path)));
        item.appendChild(view.make('span', 'item-folder', Vexa.rules.folderName(path)));
        item.addEventListener('click', function () {
            closeAndReturn();
            onPick(path);
        }, false);
        return item;
    }

    // Below its button, no farther down than the page.
    function place(menu) {
        var group = view.element('choose-group').getBoundingClientRect();
        var page = view.element('page').getBoundingClientRect();
        menu.style.left = (group.left - page.left) + 'px';
        menu.style.top = (group.bottom - page.top + 3) + 'px';
        menu.style.maxHeight = Math.max(60, page.bottom - group.bottom - 8) + 'px';
    }

    function open() {
        var menu = view.element('recent-menu');
        menu.textContent = '';
        list().forEach(function (path) {
            menu.appendChild(itemFor(path));
        });
        view.show('recent-menu', true);
        place(menu);
        items()[0].focus();
    }

    function toggle() {
        if (isOpen()) {
            closeAndReturn();
        } else {
            open();
        }
    }

    function move(step) {
        var all = items();
        var next = all.indexOf(document.activeElement) + step;
        all[(next + all.length) % all.length].focus();
    }

    function onMenuKey(event) {
        var handled = {
            27: closeAndReturn,
            9: closeAndReturn, // and from there Tab goes on
            38: move.bind(null, -1),
            40: move.bind(null, 1)
        }[event.which];
        if (handled) {
            handled();
            if (event.which !== 9) {
                event.preventDefault();
            }
        }
    }

    function onButtonKey(event) {
        if (event.which === 40 && !isOpen() && !view.element('recent').disabled) {
            open();
            event.preventDefault();
        }
    }

    function onPress(event) {
        if (isOpen() && !view.element('recent-menu').contains(event.target) &&
                event.target !== view.element('recent')) {
            close();
        }
    }

    // problem: why nothing can be taken now; empty if it can.
    function render(problem) {
        view.show('recent', list().length > 0);
        view.allow('recent', problem);
        if (!problem) {
            view.element('recent').title = 'Recently used';
        } else if (isOpen()) {
            close();
        }
    }

    // pick(path) is called with the file that the user wants.
    function start(pick) {
        onPick = pick;
        view.onClick('recent', toggle);
        view.element('recent').addEventListener('keydown', onButtonKey, false);
        view.element('recent-menu').addEventListener('keydown', onMenuKey, false);
        document.addEventListener('mousedown', onPress, false);
    }

    return {start: start, render: render, add: add, remove: remove};
}());
