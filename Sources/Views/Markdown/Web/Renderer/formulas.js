// Runs in the page of formulas. Lays formulas out with KaTeX and returns what is to be drawn, in units of the formula's
// font size: the client draws it in its own colours, at any size, with the same fonts.
(() => {
    const em = 1000 // pixels of the font size here: large, so that what the browser rounds to pixels does not matter
    const inherited = 'rgb(1, 2, 3)' // the colour of all that has none of its own
    const stage = document.createElement('div')
    stage.style.cssText =
        `position:absolute;left:0;top:0;font-size:${em}px;color:${inherited};white-space:nowrap;font-variant-ligatures:none`
    // Letters that KaTeX has no font for, at the height of those that it has.
    const look = document.createElement('style')
    const faces = [['normal', 400, 'Regular'], ['normal', 700, 'Bold'], ['italic', 400, 'Italic'], ['italic', 700, 'Bold Italic']]
    look.textContent = faces.map(([style, weight, name]) => '@font-face{font-family:KorviText;size-adjust:80%;' +
        `font-style:${style};font-weight:${weight};src:local("Inter ${name}")}`).join('') +
        '.katex{font-family:KaTeX_Main,KorviText,sans-serif}'
    document.head.append(look)
    document.body.append(stage)

    const round = number => Math.round(number / em * 10000) / 10000
    const ascents = new Map() // from the top of a text's box to its baseline, for each font

    function fontOf(style) {
        return `${style.fontStyle} ${style.fontWeight} ${style.fontSize} ${style.fontFamily}`
    }

    function ascentOf(font) {
        let ascent = ascents.get(font)
        if (ascent === undefined) {
            const probe = document.createElement('div')
            probe.style.cssText = 'position:absolute;white-space:nowrap;line-height:1'
            probe.style.font = font
            probe.innerHTML = '<span>x</span><b style="display:inline-block;width:0;height:0"></b>'
            stage.append(probe)
            const range = document.createRange()
            range.selectNodeContents(probe.firstChild)
            ascent = probe.lastChild.getBoundingClientRect().bottom - range.getBoundingClientRect().top
            probe.remove()
            ascents.set(font, ascent)
        }
        return ascent
    }

    function ownColor(style) {
        return style.color === inherited ? '' : style.color
    }

    function isVisible(color) {
        return !/^rgba\(.*, 0\)$/.test(color)
    }

    // The font's file, as KaTeX names it, and the number of its size in the drawing.
    function face(style) {
        const family = /^"?(KaTeX_\w+)/.exec(style.fontFamily)?.[1] ?? 'KaTeX_Main'
        const bold = parseInt(style.fontWeight) >= 600
        const italic = style.fontStyle === 'italic'
        return `${family}-${bold && italic ? 'BoldItalic' : bold ? 'Bold' : italic ? 'Italic' : 'Regular'}`
    }

    function texts(html, place, items) {
        const walker = document.createTreeWalker(html, NodeFilter.SHOW_TEXT)
        const range = document.createRange()
        for (let node = walker.nextNode(); node; node = walker.nextNode()) {
            const text = node.data
            if (!/[^\u200b\u00a0\s]/.test(text))
                continue
            const style = getComputedStyle(node.parentElement)
            const color = ownColor(style)
            if (!isVisible(color))
                continue
            const run = { t: '', x: [], f: face(style), s: round(parseFloat(style.fontSize)) }
            for (let at = 0; at < text.length;) {
                const character = String.fromCodePoint(text.codePointAt(at))
                range.setStart(node, at)
                range.setEnd(node, at += character.length)
                if (/[\u200b\u00a0\s]/.test(character))
                    continue
                const box = range.getBoundingClientRect()
                if (run.t === '')
                    run.y = round(box.top + ascentOf(fontOf(style)) - place.y)
                run.t += character
                run.x.push(round(box.left - place.x))
            }
            if (color)
                run.c = color
            items.push(run)
        }
    }

    // Borders as KaTeX asks for them; the browser cuts them to whole pixels.
    function borderWidth(element, style, side) {
        if (style[`border${side}Style`] === 'none')
            return 0
        const asked = /^([\d.]+)em$/.exec(element.style[`border${side}Width`])
        return asked ? asked[1] * parseFloat(style.fontSize) : parseFloat(style[`border${side}Width`])
    }

    function rules(html, place, items) {
        const bordered = '.frac-line,.hline,.hdashline,.overline-line,.underline-line,.rule,.fbox,.fcolorbox,.sout,.angl,' +
            '.vertical-separator,[style*="border"],[style*="background"]'
        for (const element of html.querySelectorAll(bordered)) {
            const style = getComputedStyle(element)
            const box = element.getBoundingClientRect()
            const add = (x, y, width, height, color, dashed) => {
                if (width > 0 && height > 0 && isVisible(color)) {
                    const item = { r: [round(x - place.x), round(y - place.y), round(width), round(height)] }
                    if (color !== inherited)
                        item.c = color
                    if (dashed)
                        item.dash = true
                    items.push(item)
                }
            }
            if (isVisible(style.backgroundColor))
                add(box.left, box.top, box.width, box.height, style.backgroundColor, false)
            const sides = {}
            for (const side of ['Top', 'Bottom', 'Left', 'Right'])
                sides[side] = borderWidth(element, style, side)
            const dashed = side => style[`border${side}Style`] === 'dashed'
            add(box.left, box.top, box.width, sides.Top, style.borderTopColor, dashed('Top'))
            add(box.left, box.bottom - sides.Bottom, box.width, sides.Bottom, style.borderBottomColor, dashed('Bottom'))
            add(box.left, box.top, sides.Left, box.height, style.borderLeftColor, dashed('Left'))
            add(box.right - sides.Right, box.top, sides.Right, box.height, style.borderRightColor, dashed('Right'))
        }
    }

    // A path's commands as M, L, C, Q and Z of the whole drawing: ['M', x, y, 'L', ...].
    function absolutePath(data, matrix, place) {
        const out = []
        const put = (command, ...points) => {
            out.push(command)
            for (let i = 0; i < points.length; i += 2) {
                const [x, y] = [points[i], points[i + 1]]
                out.push(round(matrix.a * x + matrix.c * y + matrix.e - place.x),
                    round(matrix.b * x + matrix.d * y + matrix.f - place.y))
            }
        }
        const counts = { M: 2, L: 2, H: 1, V: 1, C: 6, S: 4, Q: 4, T: 2, A: 7, Z: 0 }
        const tokens = data.match(/[a-zA-Z]|[-+]?(?:\d+\.?\d*|\.\d+)(?:[eE][-+]?\d+)?/g) ?? []
        let [x, y, startX, startY, controlX, controlY] = [0, 0, 0, 0, 0, 0]
        let command = ''
        let before = ''
        for (let i = 0; i < tokens.length;) {
            if (/[a-zA-Z]/.test(tokens[i]))
                command = tokens[i++]
            const kind = command.toUpperCase()
            const relative = kind !== command
            if (!(kind in counts))
                return out
            const v = tokens.slice(i, i += counts[kind]).map(Number)
            if (v.length < counts[kind])
                return out
            if (relative) {
                for (let k = 0; k < v.length; ++k) {
                    if (kind === 'H')
                        v[k] += x
                    else if (kind === 'V')
                        v[k] += y
                    else if (kind !== 'A' || k >= 5)
                        v[k] += (kind === 'A' ? k - 5 : k) % 2 ? y : x
                }
            }
            const reflected = (...kinds) => kinds.includes(before) ? [2 * x - controlX, 2 * y - controlY] : [x, y]
            switch (kind) {
            case 'M':
                [x, y, startX, startY] = [v[0], v[1], v[0], v[1]]
                put('M', x, y)
                command = relative ? 'l' : 'L' // what further pairs mean
                break
            case 'L': case 'A': // KaTeX has no arcs
                [x, y] = v.slice(-2)
                put('L', x, y)
                break
            case 'H':
                x = v[0]
                put('L', x, y)
                break
            case 'V':
                y = v[0]
                put('L', x, y)
                break
            case 'S':
                v.unshift(...reflected('C', 'S'))
                // falls through
            case 'C':
                put('C', ...v)
                ;[controlX, controlY, x, y] = v.slice(2)
                break
            case 'T':
                v.unshift(...reflected('Q', 'T'))
                // falls through
            case 'Q':
                put('Q', ...v)
                ;[controlX, controlY, x, y] = v
                break
            case 'Z':
                [x, y] = [startX, startY]
                put('Z')
                break
            }
            before = kind
        }
        return out
    }

    function intersection(a, b) {
        const left = Math.max(a.left, b.left)
        const top = Math.max(a.top, b.top)
        return { left, top, right: Math.min(a.right, b.right), bottom: Math.min(a.bottom, b.bottom) }
    }

    function shapes(html, place, items) {
        for (const svg of html.querySelectorAll('svg')) {
            let clip = svg.getBoundingClientRect()
            for (let parent = svg.parentElement; parent !== html; parent = parent.parentElement) {
                if (getComputedStyle(parent).overflowX === 'hidden')
                    clip = intersection(clip, parent.getBoundingClientRect())
            }
            const color = ownColor(getComputedStyle(svg))
            if (!isVisible(color) || clip.right <= clip.left || clip.bottom <= clip.top)
                continue
            for (const shape of svg.querySelectorAll('path, line')) {
                const matrix = shape.getScreenCTM()
                const item = {
                    clip: [round(clip.left - place.x), round(clip.top - place.y), round(clip.right - clip.left),
                        round(clip.bottom - clip.top)],
                }
                if (shape.tagName === 'line') {
                    const end = name => shape[name].baseVal.value
                    item.p = absolutePath(`M${end('x1')} ${end('y1')}L${end('x2')} ${end('y2')}`, matrix, place)
                    item.w = round(parseFloat(getComputedStyle(shape).strokeWidth))
                    delete item.clip // half of its width stands out
                } else {
                    item.p = absolutePath(shape.getAttribute('d'), matrix, place)
                }
                if (color)
                    item.c = color
                items.push(item)
            }
        }
    }

    // The height that the page of this formula alone would have, less what the body adds.
    function read(box) {
        const failed = box.querySelector(':scope > .katex-error')
        if (failed)
            return { error: failed.title }
        const html = box.querySelector('.katex-html')
        if (!html)
            return { error: 'nothing to draw' }
        const bases = [...html.querySelectorAll(':scope > .base')]
        const tag = html.querySelector(':scope > .tag')
        const edges = name => bases.map(base => base.getBoundingClientRect()[name])
        if (tag) { // stands at the edge; room for it on both sides, so that the formula stays in the middle
            const own = Math.max(...edges('right')) - Math.min(...edges('left'))
            box.style.width = `${own + 2 * tag.getBoundingClientRect().width + 4 * em}px`
        }
        const left = tag ? box.getBoundingClientRect().left : Math.min(...edges('left'))
        const right = tag ? box.getBoundingClientRect().right : Math.max(...edges('right'))
        const place = { x: left, y: html.querySelector('.korvi-baseline').getBoundingClientRect().bottom }
        const struts = [...html.querySelectorAll(':scope > .base > .strut')].map(strut => strut.getBoundingClientRect())
        const items = []
        rules(html, place, items)
        texts(html, place, items)
        shapes(html, place, items)
        return {
            width: bases.length ? round(right - left) : 0,
            ascent: struts.length ? round(place.y - Math.min(...struts.map(s => s.top))) : 0,
            descent: struts.length ? round(Math.max(...struts.map(s => s.bottom)) - place.y) : 0,
            page: round(box.getBoundingClientRect().height),
            items,
        }
    }

    function draw(formulas) {
        const boxes = formulas.map(({ tex, block }) => {
            const box = document.createElement('div')
            box.style.cssText = 'position:absolute;left:0;top:0;width:max-content'
            try {
                katex.render(tex, box, { throwOnError: false, displayMode: block, output: 'html' })
            } catch (error) {
                box.textContent = ''
            }
            // Before anything is measured: each change would have all of it laid out again.
            const mark = document.createElement('span')
            mark.className = 'korvi-baseline'
            mark.style.cssText = 'display:inline-block;width:0;height:0'
            ;(box.querySelector('.katex-html > .base') ?? box.querySelector('.katex-html'))?.prepend(mark)
            return box
        })
        stage.append(...boxes)
        const drawn = boxes.map(box => {
            try {
                return read(box)
            } catch (error) {
                return { error: String(error) }
            }
        })
        for (const box of boxes)
            box.remove()
        return JSON.stringify(drawn)
    }

    window.korvi = {
        begin: async () => {
            if (!window.katex)
                throw new Error('no library')
            await Promise.all([...document.fonts].map(font => font.load().catch(() => {})))
        },
        run: async request => draw(request.formulas),
    }
})()
