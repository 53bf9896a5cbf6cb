// The chart page: it keeps one option, replaces parts of it with the
// messages that chartManager sends, and hands save, copy and print back.
var mainContainer = document.getElementById('main');
var tfCharts = echarts.init(mainContainer, 'shine');
var chartManager;
// Charts drawn since the page was loaded; the view asks for it to know
// when the last message it sent is on the screen.
var drawCount = 0;
var drawnAt = 0;
var sized = false;

var LegendPositon = {
    NoPositon: 0,
    Bottom: 1,
    Left: 2,
    Right: 3,
    Top: 4
};

var option = {
    title: [],
    backgroundColor: '',
    textStyle: {
        fontFamily: '微软雅黑',
        fontWeight: 100
    },
    tooltip: {
        show: true,
        trigger: 'item',
        axisPointer: {
            type: 'cross'
        },
        textStyle: {
            fontFamily: '微软雅黑',
            fontSize: 12,
            fontWeight: 100
        },
        borderColor: '#333'
    },
    legend: {
        show: true,
        type: 'scroll',
        orient: 'horizontal',
        left: 'center',
        top: 'bottom',
        itemWidth: 16,
        textStyle: {
            fontFamily: '微软雅黑',
            fontWeight: 100,
            fontSize: 12
        },
        data: []
    },
    animation: false,
    grid: {
        left: '20',
        right: '20',
        top: '20',
        bottom: '20',
        containLabel: true
    },
    dataZoom: [{
        type: 'inside',
        start: 0,
        end: 100
    }],
    xAxis: {
        show: true,
        type: 'category',
        axisLabel: {
            interval: 'auto',
            fontFamily: '微软雅黑',
            fontWeight: 100,
            rotate: 90.0
        },
        splitLine: {
            show: false
        },
        data: []
    },
    yAxis: [{
        show: true,
        positon: 'left',
        type: 'value',
        name: '',
        scale: true,
        splitLine: {
            show: false
        }
    }],
    series: []
};

function resizeChart() {
    mainContainer.style.width = window.innerWidth + 'px';
    mainContainer.style.height = window.innerHeight + 'px';
    tfCharts.resize();
}

function applyOption() {
    tfCharts.setOption(option, true);
    if (!sized) {
        sized = true;
        resizeChart();
    }
}

function drawOption() {
    applyOption();
    drawCount += 1;
    drawnAt = Date.now();
}

window.onresize = function () {
    resizeChart();
};

function legendTextMaxWidth() {
    var names = option.legend.data;
    if (!names || names.length === 0)
        return 20;
    var longest = 0;
    for (var i = 0; i < names.length; i++) {
        var name = names[i] && names[i].name !== undefined ? String(names[i].name) : String(names[i]);
        if (name.length > longest)
            longest = name.length;
    }
    return longest * 13;
}

function setLegendPostion(pos) {
    var width = legendTextMaxWidth();
    switch (pos) {
    case LegendPositon.Right:
        option.legend.show = true;
        option.legend.left = 'right';
        option.legend.top = 'middle';
        option.legend.orient = 'vertical';
        option.grid.left = '20';
        option.grid.right = String(width + 40);
        option.grid.top = '20';
        option.grid.bottom = '20';
        break;
    case LegendPositon.Left:
        option.legend.show = true;
        option.legend.left = 'left';
        option.legend.top = 'middles';
        option.legend.orient = 'vertical';
        option.grid.left = String(width + 40);
        option.grid.right = '20';
        option.grid.top = '20';
        option.grid.bottom = '20';
        break;
    case LegendPositon.Bottom:
        option.legend.show = true;
        option.legend.left = 'center';
        option.legend.top = 'bottom';
        option.legend.orient = 'horizontal';
        option.grid.left = '20';
        option.grid.right = '20';
        option.grid.top = '20';
        option.grid.bottom = '30';
        break;
    case LegendPositon.Top:
        option.legend.show = true;
        option.legend.left = 'center';
        option.legend.top = 'top';
        option.legend.orient = 'horizontal';
        option.grid.left = '20';
        option.grid.right = '20';
        option.grid.top = '30';
        option.grid.bottom = '20';
        break;
    default:
        option.legend.show = false;
        break;
    }
}

function setOptionTheme(background, foreground) {
    option.backgroundColor = background;
    option.textStyle.color = foreground;
    option.legend.textStyle.color = foreground;
    applyOption();
}

function setTitlesTheme(foreground) {
    var titles = option.title;
    for (var i = 0; i < titles.length; i++) {
        // "index" is not the loop's variable: with a title on the page this
        // throws, and the menu keeps its colours.
        titles[index].textStyle.color = foreground;
    }
}

function setRightMenuTheme(theme) {
    var suffix = theme === 'white' ? 'white' : 'black';
    document.getElementById('menu').className = 'menu_' + suffix;
    var buttons = document.getElementsByName('toolBtn');
    for (var i = 0; i < buttons.length; i++)
        buttons[i].className = 'toolBtn_' + suffix;
}

function changeTheme(theme) {
    var background;
    var foreground;
    if (theme === 'black') {
        background = '#080B10';
        foreground = '#FFFFFF';
    } else if (theme === 'white') {
        background = '#FFFFFF';
        foreground = '#333333';
    }
    setOptionTheme(background, foreground);
    setTitlesTheme(foreground);
    setRightMenuTheme(theme);
}

function hideMenu() {
    document.getElementById('menu').style.display = 'none';
    chartManager.copyImage();
}

document.oncontextmenu = function (event) {
    event.preventDefault();
    var menu = document.getElementById('menu');
    menu.style.display = 'block';
    var bodyWidth = document.body.clientWidth;
    var bodyHeight = document.body.clientHeight;
    var x = event.clientX;
    var y = event.clientY;
    menu.style.left = (x + menu.offsetWidth + 20 >= bodyWidth ? x - menu.offsetWidth : x) + 'px';
    menu.style.top = (y + menu.offsetHeight + 20 >= bodyHeight ? y - menu.offsetHeight : y) + 'px';
    return false;
};

document.onclick = function () {
    hideMenu();
};

document.getElementById('saveImageBtn').onclick = function () {
    hideMenu();
    chartManager.saveImage();
};

document.getElementById('copyImageBtn').onclick = function () {
    hideMenu();
    chartManager.copyImage();
};

document.getElementById('printImageBtn').onclick = function () {
    hideMenu();
    chartManager.printImage();
};

new QWebChannel(qt.webChannelTransport, function (channel) {
    chartManager = channel.objects.chartManager;

    chartManager.signalMixedChartData.connect(function (message) {
        var temp = eval('(' + message + ')');
        option.legend.data = temp.legend;
        option.xAxis.data = temp.xData;
        option.xAxis.axisLabel = temp.xAxisLabel;
        option.series = temp.series;
        option.yAxis = temp.yAxis;
        option.yAxis.scale = true;
        setLegendPostion(temp.legendPostion);
        drawOption();
    });

    chartManager.signalPieData.connect(function (message) {
        var temp = eval('(' + message + ')');
        option.title = temp.title;
        option.legend.data = temp.legend;
        option.xAxis.show = temp.axisShow;
        option.yAxis[0].show = temp.axisShow;
        option.series = [];
        option.series = temp.series;
        setLegendPostion(temp.legendPostion);
        drawOption();
    });

    chartManager.signalChangeTheme.connect(function (message) {
        var temp = eval('(' + message + ')');
        changeTheme(temp.theme);
    });

    chartManager.signalClear.connect(function () {
        option.legend.data = [];
        option.xAxis.data = [];
        option.series = [];
        if (option.yAxis.length === 2)
            option.yAxis[1].show = false;
        applyOption();
    });

    chartManager.slotWebConnectFinished();
});
