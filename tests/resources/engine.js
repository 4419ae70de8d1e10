// Checks of engine.html. The result is left in window.engineResults: {name: true or false}.
(function () {
    'use strict';

    var results = {};

    function element(id) {
        return document.getElementById(id);
    }

    function style(id, property) {
        return getComputedStyle(element(id))[property];
    }

    function check(name, test) {
        try {
            results[name] = test() === true;
        } catch (thrown) {
            results[name] = false;
        }
    }

    function clicked(action) {
        var count = 0;
        function note(event) {
            event.preventDefault();
            count += 1;
        }
        document.addEventListener('click', note, false);
        document.addEventListener('submit', note, false);
        action();
        document.removeEventListener('click', note, false);
        document.removeEventListener('submit', note, false);
        return count;
    }

    check('ECMAScript 5: arrays, JSON, bind, strict mode', function () {
        return [1, 2, 3].filter(function (n) { return n > 1; }).map(String).join() === '2,3' &&
            JSON.parse('{"a": [1]}').a[0] === 1 && (function () { return this; }.bind(5))() === 5 &&
            (function () { return this === undefined; }()) && Array.isArray([]) &&
            Object.keys({a: 1}).length === 1;
    });
    check('combining accents are composed', function () {
        return 'e\u0301'.normalize('NFC') === '\u00e9';
    });
    check('flexbox wraps by its basis', function () {
        var cells = element('row').children;
        return cells[1].offsetTop > cells[0].offsetTop && cells[0].offsetWidth === 100;
    });
    check('lengths in rem follow the size of the root', function () {
        var before = element('rem').offsetWidth;
        document.documentElement.style.fontSize = '32px';
        var after = element('rem').offsetWidth;
        document.documentElement.style.fontSize = '';
        return before === 32 && after === 64;
    });
    check('calc()', function () {
        return element('calc').offsetWidth === 80;
    });
    check('shadows make the ring of the focus', function () {
        return style('ring', 'boxShadow').indexOf('3px') >= 0;
    });
    check('gradients', function () {
        return style('gradient', 'backgroundImage').indexOf('gradient') >= 0;
    });
    check('long texts end in an ellipsis', function () {
        return style('long', 'textOverflow') === 'ellipsis' && element('long').scrollWidth > 50;
    });
    check('"hidden" hides', function () {
        element('long').hidden = true;
        var height = element('long').offsetHeight;
        element('long').hidden = false;
        return height === 0;
    });
    check(':disabled and :focus', function () {
        element('field').focus();
        return style('off', 'color') === 'rgb(1, 2, 3)' && document.activeElement === element('field');
    });
    check('a disabled button is not clicked', function () {
        return clicked(function () { element('off').click(); }) === 0;
    });
    check('a form is submitted by its button', function () {
        return clicked(function () { element('go').click(); }) >= 1;
    });
    check('a list takes a value', function () {
        element('list').value = 'b';
        return element('list').selectedIndex === 1;
    });
    check('classes, attributes, cloned parts', function () {
        var copy = element('row').cloneNode(true);
        copy.removeAttribute('id');
        copy.className = 'a b';
        return copy.children.length === 2 && copy.id === '' && copy.getAttribute('class') === 'a b' &&
            document.body.contains(element('row'));
    });
    check('scrolling into sight', function () {
        return typeof document.body.scrollIntoViewIfNeeded === 'function';
    });
    check('canvas draws lines and circles', function () {
        var context = element('canvas').getContext('2d');
        context.beginPath();
        context.arc(5, 5, 4, 0, 2 * Math.PI);
        context.fill();
        return context.getImageData(5, 5, 1, 1).data[3] === 255 &&
            context.getImageData(0, 0, 1, 1).data[3] === 0;
    });
    check('cookies of a local page', function () {
        document.cookie = 'engine=yes; max-age=1000';
        return document.cookie.indexOf('engine=yes') >= 0;
    });
    check('the number of dots of a pixel is known', function () {
        return window.devicePixelRatio >= 1;
    });

    // A local file is read, and the reading can be broken off.
    var request = new XMLHttpRequest();
    request.onload = function () {
        results['a local file can be read'] = request.responseText.indexOf('canvas draws') > 0;
        window.engineResults = results;
        Object.keys(results).forEach(function (name) {
            var line = document.createElement('li');
            line.textContent = (results[name] ? 'yes: ' : 'NO: ') + name;
            element('results').appendChild(line);
        });
    };
    request.open('GET', 'engine.js?' + Date.now(), true);
    request.overrideMimeType('text/plain; charset=utf-8');
    request.send();
}());
