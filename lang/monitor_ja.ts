<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ja_JP">
<context>
    <name>AboutDialog</name>
    <message>
        <source>About Monitor</source>
        <translation>Monitor について</translation>
    </message>
    <message>
        <source>Network processing monitor</source>
        <translation>ネットワーク処理モニター</translation>
    </message>
    <message>
        <source>Copyright © 2026 Korvane. All rights reserved.</source>
        <translation>Copyright © 2026 Korvane. 無断転載を禁じます。</translation>
    </message>
</context>
<context>
    <name>BatchDetailsDialog</name>
    <message>
        <source>Batch Details</source>
        <translation>バッチの詳細</translation>
    </message>
    <message>
        <source>Project:</source>
        <translation>プロジェクト：</translation>
    </message>
    <message>
        <source>Last error:</source>
        <translation>最後のエラー：</translation>
    </message>
    <message>
        <source>Tasks</source>
        <translation>タスク</translation>
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
        <translation>ネットワーク障害</translation>
    </message>
    <message>
        <source>Can&apos;t connect to server</source>
        <translation>サーバーに接続できません</translation>
    </message>
    <message>
        <source>Disconnected from server</source>
        <translation>サーバーから切断されました</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>&amp;File</source>
        <translation>ファイル(&amp;F)</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>ヘルプ(&amp;H)</translation>
    </message>
    <message>
        <source>E&amp;xit</source>
        <translation>終了(&amp;X)</translation>
    </message>
    <message>
        <source>About Monitor...</source>
        <translation>Monitor について...</translation>
    </message>
    <message>
        <source>Exit the application</source>
        <translation>アプリケーションを終了します</translation>
    </message>
    <message>
        <source>Display program information, version number and copyright</source>
        <translation>プログラム情報、バージョン番号、著作権を表示します</translation>
    </message>
    <message>
        <source>Ready</source>
        <translation>準備完了</translation>
    </message>
</context>
<context>
    <name>Monitor</name>
    <message>
        <source>Add Photos</source>
        <translation>写真の追加</translation>
    </message>
    <message>
        <source>Align Photos</source>
        <translation>写真のアライメント</translation>
    </message>
    <message>
        <source>Align Chunks</source>
        <translation>チャンクのアライメント</translation>
    </message>
    <message>
        <source>Analyze Photos</source>
        <translation>写真の分析</translation>
    </message>
    <message>
        <source>Build Contours</source>
        <translation>等高線の生成</translation>
    </message>
    <message>
        <source>Build DEM</source>
        <translation>DEMの生成</translation>
    </message>
    <message>
        <source>Build Dense Cloud</source>
        <translation>高密度点群の生成</translation>
    </message>
    <message>
        <source>Build Mesh</source>
        <translation>メッシュの生成</translation>
    </message>
    <message>
        <source>Build Orthomosaic</source>
        <translation>オルソモザイクの生成</translation>
    </message>
    <message>
        <source>Build Texture</source>
        <translation>テクスチャの生成</translation>
    </message>
    <message>
        <source>Build Tiled Model</source>
        <translation>タイルモデルの生成</translation>
    </message>
    <message>
        <source>Build UV</source>
        <translation>UVの生成</translation>
    </message>
    <message>
        <source>Classify Ground Points</source>
        <translation>地表点の分類</translation>
    </message>
    <message>
        <source>Close Holes</source>
        <translation>穴埋め</translation>
    </message>
    <message>
        <source>Compact Dense Cloud</source>
        <translation>高密度点群の圧縮</translation>
    </message>
    <message>
        <source>Decimate Mesh</source>
        <translation>メッシュの簡略化</translation>
    </message>
    <message>
        <source>Detect Markers</source>
        <translation>マーカーの検出</translation>
    </message>
    <message>
        <source>Duplicate Chunk</source>
        <translation>チャンクの複製</translation>
    </message>
    <message>
        <source>Export Cameras</source>
        <translation>カメラのエクスポート</translation>
    </message>
    <message>
        <source>Export Contours</source>
        <translation>等高線のエクスポート</translation>
    </message>
    <message>
        <source>Export DEM</source>
        <translation>DEMのエクスポート</translation>
    </message>
    <message>
        <source>Export Depth Map</source>
        <translation>深度マップのエクスポート</translation>
    </message>
    <message>
        <source>Export Masks</source>
        <translation>マスクのエクスポート</translation>
    </message>
    <message>
        <source>Export Matches</source>
        <translation>対応点のエクスポート</translation>
    </message>
    <message>
        <source>Export Model</source>
        <translation>モデルのエクスポート</translation>
    </message>
    <message>
        <source>Export Orthomosaic</source>
        <translation>オルソモザイクのエクスポート</translation>
    </message>
    <message>
        <source>Export Orthophotos</source>
        <translation>オルソ写真のエクスポート</translation>
    </message>
    <message>
        <source>Export Panorama</source>
        <translation>パノラマのエクスポート</translation>
    </message>
    <message>
        <source>Export Points</source>
        <translation>点群のエクスポート</translation>
    </message>
    <message>
        <source>Export Report</source>
        <translation>レポートのエクスポート</translation>
    </message>
    <message>
        <source>Export Shapes</source>
        <translation>シェイプのエクスポート</translation>
    </message>
    <message>
        <source>Export Texture</source>
        <translation>テクスチャのエクスポート</translation>
    </message>
    <message>
        <source>Export Tiled Model</source>
        <translation>タイルモデルのエクスポート</translation>
    </message>
    <message>
        <source>Import Cameras</source>
        <translation>カメラのインポート</translation>
    </message>
    <message>
        <source>Import Dem</source>
        <translation>DEMのインポート</translation>
    </message>
    <message>
        <source>Import Masks</source>
        <translation>マスクのインポート</translation>
    </message>
    <message>
        <source>Import Model</source>
        <translation>モデルのインポート</translation>
    </message>
    <message>
        <source>Import Shapes</source>
        <translation>シェイプのインポート</translation>
    </message>
    <message>
        <source>Invert Masks</source>
        <translation>マスクの反転</translation>
    </message>
    <message>
        <source>Load Project</source>
        <translation>プロジェクトの読み込み</translation>
    </message>
    <message>
        <source>Match Photos</source>
        <translation>写真のマッチング</translation>
    </message>
    <message>
        <source>Merge Chunks</source>
        <translation>チャンクの結合</translation>
    </message>
    <message>
        <source>Optimize Alignment</source>
        <translation>アライメントの最適化</translation>
    </message>
    <message>
        <source>Refine Markers</source>
        <translation>マーカーの精密化</translation>
    </message>
    <message>
        <source>Refine Points</source>
        <translation>点の精密化</translation>
    </message>
    <message>
        <source>Reset Masks</source>
        <translation>マスクのリセット</translation>
    </message>
    <message>
        <source>Reset Orthomosaic</source>
        <translation>オルソモザイクのリセット</translation>
    </message>
    <message>
        <source>Run Script</source>
        <translation>スクリプトの実行</translation>
    </message>
    <message>
        <source>Save Project</source>
        <translation>プロジェクトの保存</translation>
    </message>
    <message>
        <source>Select Dense Points</source>
        <translation>高密度点の選択</translation>
    </message>
    <message>
        <source>Smooth Model</source>
        <translation>モデルのスムージング</translation>
    </message>
    <message>
        <source>Track Markers</source>
        <translation>マーカーの追跡</translation>
    </message>
    <message>
        <source>Triangulate Points</source>
        <translation>点の三角測量</translation>
    </message>
    <message>
        <source>Undistort Photos</source>
        <translation>写真の歪み補正</translation>
    </message>
    <message>
        <source>Update Orthomosaic</source>
        <translation>オルソモザイクの更新</translation>
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
        <translation>標準</translation>
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
        <translation>番号</translation>
    </message>
    <message>
        <source>Project</source>
        <translation>プロジェクト</translation>
    </message>
    <message>
        <source>Started</source>
        <translation>開始日時</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>状態</translation>
    </message>
    <message>
        <source>Priority</source>
        <translation>優先度</translation>
    </message>
    <message>
        <source>Current Task</source>
        <translation>現在のタスク</translation>
    </message>
    <message>
        <source>Elapsed / Left</source>
        <translation>経過 / 残り</translation>
    </message>
    <message>
        <source>Failures</source>
        <translation>失敗</translation>
    </message>
    <message>
        <source>Nodes</source>
        <translation>ノード</translation>
    </message>
    <message>
        <source>Host</source>
        <translation>ホスト</translation>
    </message>
    <message>
        <source>Batch #</source>
        <translation>バッチ番号</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>進捗</translation>
    </message>
    <message>
        <source>Last Error</source>
        <translation>最後のエラー</translation>
    </message>
    <message>
        <source>Waiting...</source>
        <translation>待機中...</translation>
    </message>
    <message>
        <source>Host name:</source>
        <translation>ホスト名：</translation>
    </message>
    <message>
        <source>Port:</source>
        <translation>ポート：</translation>
    </message>
    <message>
        <source>Connect</source>
        <translation>接続</translation>
    </message>
    <message>
        <source>Disconnect</source>
        <translation>切断</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>一時停止</translation>
    </message>
    <message>
        <source>Resume</source>
        <translation>再開</translation>
    </message>
    <message>
        <source>Abort</source>
        <translation>中止</translation>
    </message>
    <message>
        <source>Set Priority</source>
        <translation>優先度の設定</translation>
    </message>
    <message>
        <source>Details...</source>
        <translation>詳細...</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>停止</translation>
    </message>
    <message>
        <source>Batches</source>
        <translation>バッチ</translation>
    </message>
</context>
<context>
    <name>TaskStatusWidget</name>
    <message>
        <source>%1/%2 completed</source>
        <translation>%1/%2 完了</translation>
    </message>
    <message>
        <source>%1/%2 nodes active</source>
        <translation>%1/%2 ノード稼働中</translation>
    </message>
    <message>
        <source>%1 failures</source>
        <translation>失敗 %1 件</translation>
    </message>
    <message>
        <source>Waiting...</source>
        <translation>待機中...</translation>
    </message>
    <message>
        <source>elapsed</source>
        <translation>経過</translation>
    </message>
    <message>
        <source>left</source>
        <translation>残り</translation>
    </message>
    <message>
        <source>%1%</source>
        <comment>progress in percent</comment>
        <translation>%1%</translation>
    </message>
</context>
</TS>
