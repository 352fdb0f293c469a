// Runs in the page of diagrams. Draws one with Mermaid and returns it as a picture of so many pixels.
(() => {
    const most = 8192 // pixels along an edge of a picture
    let count = 0

    async function picture(request) {
        const host = document.createElement('div')
        host.style.cssText = `position:absolute;left:0;top:0;width:${request.width}px`
        document.body.append(host)
        try {
            const { svg } = await mermaid.render(`korvi-${++count}`, request.code, host)
            host.innerHTML = svg
            const element = host.querySelector('svg')
            const box = element.viewBox.baseVal
            const natural = box && box.width > 0 ? box : element.getBoundingClientRect()
            if (!(natural.width > 0 && natural.height > 0))
                throw new Error('empty diagram')
            const factor = Math.min(request.scale, request.width / natural.width)
            const width = natural.width * factor
            const height = natural.height * factor
            const ratio = Math.min(request.ratio, most / width, most / height)
            const look = document.createElement('style')
            look.textContent = document.querySelector('head > style').textContent
            element.prepend(look)
            if (!(box && box.width > 0))
                element.setAttribute('viewBox', `0 0 ${natural.width} ${natural.height}`)
            element.setAttribute('width', width * ratio)
            element.setAttribute('height', height * ratio)
            element.style.maxWidth = 'none'
            const image = new Image()
            image.src = 'data:image/svg+xml;charset=utf-8,' +
                encodeURIComponent(new XMLSerializer().serializeToString(element))
            await image.decode()
            const canvas = document.createElement('canvas')
            canvas.width = Math.max(1, Math.ceil(width * ratio))
            canvas.height = Math.max(1, Math.ceil(height * ratio))
            canvas.getContext('2d').drawImage(image, 0, 0)
            const png = canvas.toDataURL('image/png')
            return { width, height, png: png.slice(png.indexOf(',') + 1) }
        } catch (error) {
            return { error: String(error?.message ?? error) }
        } finally {
            host.remove()
        }
    }

    window.korvi = {
        begin: async () => {
            if (!window.mermaid)
                throw new Error('no library')
            await document.fonts.ready
        },
        run: async request => JSON.stringify(await picture(request)),
    }
})()
