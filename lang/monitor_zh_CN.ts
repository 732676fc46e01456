<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN">
<context>
    <name>AboutDialog</name>
    <message>
        <source>About Monitor</source>
        <translation>关于 Monitor</translation>
    </message>
    <message>
        <source>Network processing monitor</source>
        <translation>网络处理监视器</translation>
    </message>
    <message>
        <source>Copyright © 2026 Korvane. All rights reserved.</source>
        <translation>版权所有 © 2026 Korvane。保留所有权利。</translation>
    </message>
</context>
<context>
    <name>BatchDetailsDialog</name>
    <message>
        <source>Batch Details</source>
        <translation>批次详细信息</translation>
    </message>
    <message>
        <source>Project:</source>
        <translation>项目：</translation>
    </message>
    <message>
        <source>Last error:</source>
        <translation>上次错误：</translation>
    </message>
    <message>
        <source>Tasks</source>
        <translation>任务</translation>
    </message>
</context>
<context>
    <name>CurrentRowAnnouncer</name>
    <message>
        <source>%1: %2</source>
        <comment>a column header and the cell below it</comment>
        <translation>%1：%2</translation>
    </message>
</context>
<context>
    <name>Errors</name>
    <message>
        <source>Network failure</source>
        <translation>网络故障</translation>
    </message>
    <message>
        <source>Can&apos;t connect to server</source>
        <translation>无法连接到服务器</translation>
    </message>
    <message>
        <source>Disconnected from server</source>
        <translation>已与服务器断开连接</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>&amp;File</source>
        <translation>文件(&amp;F)</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>帮助(&amp;H)</translation>
    </message>
    <message>
        <source>E&amp;xit</source>
        <translation>退出(&amp;X)</translation>
    </message>
    <message>
        <source>About Monitor...</source>
        <translation>关于 Monitor...</translation>
    </message>
    <message>
        <source>Exit the application</source>
        <translation>退出应用程序</translation>
    </message>
    <message>
        <source>Display program information, version number and copyright</source>
        <translation>显示程序信息、版本号和版权</translation>
    </message>
    <message>
        <source>Ready</source>
        <translation>就绪</translation>
    </message>
</context>
<context>
    <name>Monitor</name>
    <message>
        <source>Add Photos</source>
        <translation>添加照片</translation>
    </message>
    <message>
        <source>Align Photos</source>
        <translation>对齐照片</translation>
    </message>
    <message>
        <source>Align Chunks</source>
        <translation>对齐块</translation>
    </message>
    <message>
        <source>Analyze Photos</source>
        <translation>分析照片</translation>
    </message>
    <message>
        <source>Build Contours</source>
        <translation>生成等高线</translation>
    </message>
    <message>
        <source>Build DEM</source>
        <translation>生成 DEM</translation>
    </message>
    <message>
        <source>Build Dense Cloud</source>
        <translation>生成密集点云</translation>
    </message>
    <message>
        <source>Build Mesh</source>
        <translation>生成网格</translation>
    </message>
    <message>
        <source>Build Orthomosaic</source>
        <translation>生成正射影像</translation>
    </message>
    <message>
        <source>Build Texture</source>
        <translation>生成纹理</translation>
    </message>
    <message>
        <source>Build Tiled Model</source>
        <translation>生成瓦片模型</translation>
    </message>
    <message>
        <source>Build UV</source>
        <translation>生成 UV</translation>
    </message>
    <message>
        <source>Classify Ground Points</source>
        <translation>分类地面点</translation>
    </message>
    <message>
        <source>Close Holes</source>
        <translation>填补孔洞</translation>
    </message>
    <message>
        <source>Compact Dense Cloud</source>
        <translation>压缩密集点云</translation>
    </message>
    <message>
        <source>Decimate Mesh</source>
        <translation>简化网格</translation>
    </message>
    <message>
        <source>Detect Markers</source>
        <translation>检测标记</translation>
    </message>
    <message>
        <source>Duplicate Chunk</source>
        <translation>复制块</translation>
    </message>
    <message>
        <source>Export Cameras</source>
        <translation>导出相机</translation>
    </message>
    <message>
        <source>Export Contours</source>
        <translation>导出等高线</translation>
    </message>
    <message>
        <source>Export DEM</source>
        <translation>导出 DEM</translation>
    </message>
    <message>
        <source>Export Depth Map</source>
        <translation>导出深度图</translation>
    </message>
    <message>
        <source>Export Masks</source>
        <translation>导出掩膜</translation>
    </message>
    <message>
        <source>Export Matches</source>
        <translation>导出匹配点</translation>
    </message>
    <message>
        <source>Export Model</source>
        <translation>导出模型</translation>
    </message>
    <message>
        <source>Export Orthomosaic</source>
        <translation>导出正射影像</translation>
    </message>
    <message>
        <source>Export Orthophotos</source>
        <translation>导出正射照片</translation>
    </message>
    <message>
        <source>Export Panorama</source>
        <translation>导出全景图</translation>
    </message>
    <message>
        <source>Export Points</source>
        <translation>导出点云</translation>
    </message>
    <message>
        <source>Export Report</source>
        <translation>导出报告</translation>
    </message>
    <message>
        <source>Export Shapes</source>
        <translation>导出形状</translation>
    </message>
    <message>
        <source>Export Texture</source>
        <translation>导出纹理</translation>
    </message>
    <message>
        <source>Export Tiled Model</source>
        <translation>导出瓦片模型</translation>
    </message>
    <message>
        <source>Import Cameras</source>
        <translation>导入相机</translation>
    </message>
    <message>
        <source>Import Dem</source>
        <translation>导入 DEM</translation>
    </message>
    <message>
        <source>Import Masks</source>
        <translation>导入掩膜</translation>
    </message>
    <message>
        <source>Import Model</source>
        <translation>导入模型</translation>
    </message>
    <message>
        <source>Import Shapes</source>
        <translation>导入形状</translation>
    </message>
    <message>
        <source>Invert Masks</source>
        <translation>反转掩膜</translation>
    </message>
    <message>
        <source>Load Project</source>
        <translation>加载项目</translation>
    </message>
    <message>
        <source>Match Photos</source>
        <translation>匹配照片</translation>
    </message>
    <message>
        <source>Merge Chunks</source>
        <translation>合并块</translation>
    </message>
    <message>
        <source>Optimize Alignment</source>
        <translation>优化对齐</translation>
    </message>
    <message>
        <source>Refine Markers</source>
        <translation>精化标记</translation>
    </message>
    <message>
        <source>Refine Points</source>
        <translation>精化点</translation>
    </message>
    <message>
        <source>Reset Masks</source>
        <translation>重置掩膜</translation>
    </message>
    <message>
        <source>Reset Orthomosaic</source>
        <translation>重置正射影像</translation>
    </message>
    <message>
        <source>Run Script</source>
        <translation>运行脚本</translation>
    </message>
    <message>
        <source>Save Project</source>
        <translation>保存项目</translation>
    </message>
    <message>
        <source>Select Dense Points</source>
        <translation>选择密集点</translation>
    </message>
    <message>
        <source>Smooth Model</source>
        <translation>平滑模型</translation>
    </message>
    <message>
        <source>Track Markers</source>
        <translation>跟踪标记</translation>
    </message>
    <message>
        <source>Triangulate Points</source>
        <translation>三角化点</translation>
    </message>
    <message>
        <source>Undistort Photos</source>
        <translation>校正照片畸变</translation>
    </message>
    <message>
        <source>Update Orthomosaic</source>
        <translation>更新正射影像</translation>
    </message>
    <message>
        <source>Highest</source>
        <translation>最高</translation>
    </message>
    <message>
        <source>High</source>
        <translation>高</translation>
    </message>
    <message>
        <source>Normal</source>
        <translation>正常</translation>
    </message>
    <message>
        <source>Low</source>
        <translation>低</translation>
    </message>
    <message>
        <source>Lowest</source>
        <translation>最低</translation>
    </message>
    <message>
        <source>#</source>
        <translation>编号</translation>
    </message>
    <message>
        <source>Project</source>
        <translation>项目</translation>
    </message>
    <message>
        <source>Started</source>
        <translation>开始时间</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>状态</translation>
    </message>
    <message>
        <source>Priority</source>
        <translation>优先级</translation>
    </message>
    <message>
        <source>Current Task</source>
        <translation>当前任务</translation>
    </message>
    <message>
        <source>Elapsed / Left</source>
        <translation>已用 / 剩余</translation>
    </message>
    <message>
        <source>Failures</source>
        <translation>失败</translation>
    </message>
    <message>
        <source>Nodes</source>
        <translation>节点</translation>
    </message>
    <message>
        <source>Host</source>
        <translation>主机</translation>
    </message>
    <message>
        <source>Batch #</source>
        <translation>批次编号</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>进度</translation>
    </message>
    <message>
        <source>Last Error</source>
        <translation>上次错误</translation>
    </message>
    <message>
        <source>Waiting...</source>
        <translation>等待中...</translation>
    </message>
    <message>
        <source>Host name:</source>
        <translation>主机名：</translation>
    </message>
    <message>
        <source>Port:</source>
        <translation>端口：</translation>
    </message>
    <message>
        <source>Connect</source>
        <translation>连接</translation>
    </message>
    <message>
        <source>Disconnect</source>
        <translation>断开连接</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>暂停</translation>
    </message>
    <message>
        <source>Resume</source>
        <translation>恢复</translation>
    </message>
    <message>
        <source>Abort</source>
        <translation>中止</translation>
    </message>
    <message>
        <source>Set Priority</source>
        <translation>设置优先级</translation>
    </message>
    <message>
        <source>Details...</source>
        <translation>详细信息...</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>停止</translation>
    </message>
    <message>
        <source>Batches</source>
        <translation>批次</translation>
    </message>
</context>
<context>
    <name>TaskStatusWidget</name>
    <message>
        <source>%1/%2 completed</source>
        <translation>已完成 %1/%2</translation>
    </message>
    <message>
        <source>%1/%2 nodes active</source>
        <translation>活动节点 %1/%2</translation>
    </message>
    <message>
        <source>%1 failures</source>
        <translation>失败 %1 次</translation>
    </message>
    <message>
        <source>Waiting...</source>
        <translation>等待中...</translation>
    </message>
    <message>
        <source>elapsed</source>
        <translation>已用</translation>
    </message>
    <message>
        <source>left</source>
        <translation>剩余</translation>
    </message>
    <message>
        <source>%1%</source>
        <comment>progress in percent</comment>
        <translation>%1%</translation>
    </message>
</context>
<context>
    <name>Web</name>
    <message>
        <source>Views</source>
        <translation>视图</translation>
    </message>
    <message>
        <source>Farm summary</source>
        <translation>农场概览</translation>
    </message>
    <message>
        <source>data as of %1</source>
        <translation>数据截至 %1</translation>
    </message>
    <message>
        <source>Disconnected from server since %1 — showing the last known state</source>
        <translation>自 %1 起已与服务器断开连接——显示的是最后已知的状态</translation>
    </message>
    <message>
        <source>Connected to the server again</source>
        <translation>已重新连接到服务器</translation>
    </message>
    <message>
        <source>Signed in as %1 (%2)</source>
        <translation>已以 %1 身份登录（%2）</translation>
    </message>
    <message>
        <source>No sign-in (%1)</source>
        <translation>未登录（%1）</translation>
    </message>
    <message>
        <source>viewer</source>
        <translation>查看者</translation>
    </message>
    <message>
        <source>operator</source>
        <translation>操作员</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>语言</translation>
    </message>
    <message>
        <source>Filter</source>
        <translation>筛选</translation>
    </message>
    <message>
        <source>All statuses</source>
        <translation>所有状态</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>搜索</translation>
    </message>
    <message>
        <source>Text in any column</source>
        <translation>任意列中的文本</translation>
    </message>
    <message numerus="yes">
        <source>%n selected</source>
        <translation>
            <numerusform>已选择 %n 项</numerusform>
        </translation>
    </message>
    <message>
        <source>Clear selection</source>
        <translation>清除选择</translation>
    </message>
    <message>
        <source>Actions</source>
        <translation>操作</translation>
    </message>
    <message>
        <source>Actions for #%1</source>
        <translation>#%1 的操作</translation>
    </message>
    <message numerus="yes">
        <source>Pause %n batches: %1</source>
        <translation>
            <numerusform>暂停 %n 个批次：%1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Resume %n batches: %1</source>
        <translation>
            <numerusform>恢复 %n 个批次：%1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Abort %n batches: %1</source>
        <translation>
            <numerusform>中止 %n 个批次：%1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Pause %n nodes: %1</source>
        <translation>
            <numerusform>暂停 %n 个节点：%1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Resume %n nodes: %1</source>
        <translation>
            <numerusform>恢复 %n 个节点：%1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Stop %n nodes: %1</source>
        <translation>
            <numerusform>停止 %n 个节点：%1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Priority %1 for %n batches: %2</source>
        <translation>
            <numerusform>将 %n 个批次的优先级设为“%1”：%2</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Priority %1 for %n nodes: %2</source>
        <translation>
            <numerusform>将 %n 个节点的优先级设为“%1”：%2</numerusform>
        </translation>
    </message>
    <message>
        <source>Confirm</source>
        <translation>确认</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Accepted</source>
        <translation>已接受</translation>
    </message>
    <message>
        <source>Refused: %1</source>
        <translation>已拒绝：%1</translation>
    </message>
    <message>
        <source>No answer in time: %1</source>
        <translation>未在规定时间内响应：%1</translation>
    </message>
    <message>
        <source>Server unreachable: %1</source>
        <translation>无法访问服务器：%1</translation>
    </message>
    <message>
        <source>Not allowed: %1</source>
        <translation>不允许：%1</translation>
    </message>
    <message>
        <source>No batches</source>
        <translation>没有批次</translation>
    </message>
    <message>
        <source>No nodes</source>
        <translation>没有节点</translation>
    </message>
    <message>
        <source>No batch matches the filter</source>
        <translation>没有符合筛选条件的批次</translation>
    </message>
    <message>
        <source>No node matches the filter</source>
        <translation>没有符合筛选条件的节点</translation>
    </message>
    <message>
        <source>Batch #%1</source>
        <translation>批次 #%1</translation>
    </message>
    <message>
        <source>Back to the batch list</source>
        <translation>返回批次列表</translation>
    </message>
    <message>
        <source>The farm has no batch #%1</source>
        <translation>农场中没有批次 #%1</translation>
    </message>
    <message>
        <source>Loading...</source>
        <translation>正在加载...</translation>
    </message>
    <message>
        <source>Shown: %1 of %2</source>
        <translation>显示 %1 项，共 %2 项</translation>
    </message>
    <message>
        <source>Results</source>
        <translation>结果</translation>
    </message>
    <message>
        <source>Sort by %1</source>
        <translation>按 %1 排序</translation>
    </message>
    <message>
        <source>Select</source>
        <translation>选择</translation>
    </message>
    <message>
        <source>Light</source>
        <translation>浅色</translation>
    </message>
    <message>
        <source>Dark</source>
        <translation>深色</translation>
    </message>
    <message>
        <source>Theme</source>
        <translation>主题</translation>
    </message>
    <message>
        <source>Reconnecting...</source>
        <translation>正在重新连接...</translation>
    </message>
</context>
</TS>
