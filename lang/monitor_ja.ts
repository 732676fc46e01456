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
<context>
    <name>Web</name>
    <message>
        <source>Views</source>
        <translation>ビュー</translation>
    </message>
    <message>
        <source>Farm summary</source>
        <translation>ファームの概要</translation>
    </message>
    <message>
        <source>data as of %1</source>
        <translation>%1 時点のデータ</translation>
    </message>
    <message>
        <source>Disconnected from server since %1 — showing the last known state</source>
        <translation>%1 からサーバーとの接続が切れています — 最後に確認した状態を表示しています</translation>
    </message>
    <message>
        <source>Connected to the server again</source>
        <translation>サーバーに再接続しました</translation>
    </message>
    <message>
        <source>Signed in as %1 (%2)</source>
        <translation>%1 としてサインイン中（%2）</translation>
    </message>
    <message>
        <source>No sign-in (%1)</source>
        <translation>サインインなし（%1）</translation>
    </message>
    <message>
        <source>viewer</source>
        <translation>閲覧者</translation>
    </message>
    <message>
        <source>operator</source>
        <translation>オペレーター</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>言語</translation>
    </message>
    <message>
        <source>Filter</source>
        <translation>フィルター</translation>
    </message>
    <message>
        <source>All statuses</source>
        <translation>すべての状態</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>検索</translation>
    </message>
    <message>
        <source>Text in any column</source>
        <translation>任意の列のテキスト</translation>
    </message>
    <message numerus="yes">
        <source>%n selected</source>
        <translation>
            <numerusform>%n 件を選択中</numerusform>
        </translation>
    </message>
    <message>
        <source>Clear selection</source>
        <translation>選択を解除</translation>
    </message>
    <message>
        <source>Actions</source>
        <translation>操作</translation>
    </message>
    <message>
        <source>Actions for #%1</source>
        <translation>#%1 の操作</translation>
    </message>
    <message numerus="yes">
        <source>Pause %n batches: %1</source>
        <translation>
            <numerusform>%n 件のバッチを一時停止：%1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Resume %n batches: %1</source>
        <translation>
            <numerusform>%n 件のバッチを再開：%1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Abort %n batches: %1</source>
        <translation>
            <numerusform>%n 件のバッチを中止：%1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Pause %n nodes: %1</source>
        <translation>
            <numerusform>%n 台のノードを一時停止：%1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Resume %n nodes: %1</source>
        <translation>
            <numerusform>%n 台のノードを再開：%1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Stop %n nodes: %1</source>
        <translation>
            <numerusform>%n 台のノードを停止：%1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Priority %1 for %n batches: %2</source>
        <translation>
            <numerusform>%n 件のバッチの優先度を「%1」に設定：%2</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Priority %1 for %n nodes: %2</source>
        <translation>
            <numerusform>%n 台のノードの優先度を「%1」に設定：%2</numerusform>
        </translation>
    </message>
    <message>
        <source>Confirm</source>
        <translation>確認</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>キャンセル</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>閉じる</translation>
    </message>
    <message>
        <source>Accepted</source>
        <translation>受け付けました</translation>
    </message>
    <message>
        <source>Refused: %1</source>
        <translation>拒否されました：%1</translation>
    </message>
    <message>
        <source>No answer in time: %1</source>
        <translation>時間内に応答がありません：%1</translation>
    </message>
    <message>
        <source>Server unreachable: %1</source>
        <translation>サーバーに接続できません：%1</translation>
    </message>
    <message>
        <source>Not allowed: %1</source>
        <translation>許可されていません：%1</translation>
    </message>
    <message>
        <source>No batches</source>
        <translation>バッチはありません</translation>
    </message>
    <message>
        <source>No nodes</source>
        <translation>ノードはありません</translation>
    </message>
    <message>
        <source>No batch matches the filter</source>
        <translation>フィルターに一致するバッチはありません</translation>
    </message>
    <message>
        <source>No node matches the filter</source>
        <translation>フィルターに一致するノードはありません</translation>
    </message>
    <message>
        <source>Batch #%1</source>
        <translation>バッチ #%1</translation>
    </message>
    <message>
        <source>Back to the batch list</source>
        <translation>バッチ一覧に戻る</translation>
    </message>
    <message>
        <source>The farm has no batch #%1</source>
        <translation>ファームにバッチ #%1 はありません</translation>
    </message>
    <message>
        <source>Loading...</source>
        <translation>読み込み中...</translation>
    </message>
    <message>
        <source>Shown: %1 of %2</source>
        <translation>%2 件中 %1 件を表示</translation>
    </message>
    <message>
        <source>Results</source>
        <translation>結果</translation>
    </message>
    <message>
        <source>Sort by %1</source>
        <translation>%1 で並べ替え</translation>
    </message>
    <message>
        <source>Select</source>
        <translation>選択</translation>
    </message>
    <message>
        <source>Light</source>
        <translation>ライト</translation>
    </message>
    <message>
        <source>Dark</source>
        <translation>ダーク</translation>
    </message>
    <message>
        <source>Theme</source>
        <translation>テーマ</translation>
    </message>
    <message>
        <source>Reconnecting...</source>
        <translation>再接続中...</translation>
    </message>
</context>
</TS>
